#include "gfx/foundation/hsfolderiterator.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

#include "gfx/foundation/hsdebug.h"

namespace fs = std::filesystem;

namespace {

#ifdef __APPLE__
constexpr const char* kSystemFonts = "/System/Library/Fonts";
#else
constexpr const char* kSystemFonts = "/usr/share/fonts";
#endif

bool EndsInSeparator(const char* path) {
  const size_t length = std::strlen(path);
  return length > 0 && path[length - 1] == '/';
}

template <typename Iterator>
std::vector<std::string> NamesIn(const fs::path& folder, fs::directory_options options) {
  std::vector<std::string> names;
  std::error_code error;
  for (Iterator it(folder, options, error), end; !error && it != end; it.increment(error))
    names.push_back(it->path().lexically_relative(folder).generic_string());
  return names;
}

}  // namespace

void hsFolderIterator::SetPath(const char* path) {
  std::snprintf(fPath, sizeof fPath, "%s", path);
  fNested = false;
  Reset();
}

void hsFolderIterator::UseWindowsFontsPath(const char* name) {
#ifdef _WIN32
  const UINT length = GetWindowsDirectoryA(fPath, kFolderIterator_MaxPath);
  if (!hsAssert(length > 0 && length < kFolderIterator_MaxPath,
                "Error getting windows directory in UseWindowsFontsPath"))
    fPath[0] = 0;
  if (name) {
    const size_t used = std::strlen(fPath);
    std::snprintf(fPath + used, sizeof fPath - used, "\\%s\\", name);
  }
  Reset();
#else
  (void)name;
  SetPath(kSystemFonts);
  fNested = true;
#endif
}

void hsFolderIterator::Reset() {
  fNames.clear();
  fName.clear();
  fSearching = false;
  fValid = true;
}

void hsFolderIterator::Search() {
  const fs::path folder(fPath);
  const auto options = fs::directory_options::skip_permission_denied;
  fNames = fNested ? NamesIn<fs::recursive_directory_iterator>(folder, options)
                   : NamesIn<fs::directory_iterator>(folder, options);
  std::sort(fNames.begin(), fNames.end(), std::greater<>());
  fSearching = true;
}

bool hsFolderIterator::NextFile() {
  fName.clear();
  if (!fValid) return false;
  if (!fSearching) Search();
  fValid = !fNames.empty();
  if (!fValid) return false;
  fName = std::move(fNames.back());
  fNames.pop_back();
  return true;
}

bool hsFolderIterator::NextFileSuffix(const char* suffix) {
  while (NextFile()) {
    const size_t dot = fName.rfind('.');
    if (dot != std::string::npos && fName.compare(dot + 1, std::string::npos, suffix) == 0) return true;
  }
  return false;
}

const char* hsFolderIterator::GetFileName() const {
  if (fName.empty()) throw "end of folder";
  return fName.c_str();
}

int hsFolderIterator::GetPathAndName(char buffer[]) const {
  const char* name = GetFileName();
  const int size = int(std::strlen(fPath) + std::strlen(name)) + 2;
  const bool fits = hsAssert(size <= kFolderIterator_MaxPath, "Overrun kFolderIterator_MaxPath");
  if (buffer && fits) std::snprintf(buffer, size_t(size), "%s%s%s", fPath, EndsInSeparator(fPath) ? "" : "/", name);
  return size;
}
