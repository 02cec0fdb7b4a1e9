#include "kit/run/explain.h"

#include <filesystem>
#include <fstream>
#include <string_view>

#include "engine/format/pagefile.h"
#include "kit/files.h"
#include "kit/fonts/fontreport.h"
#include "kit/source/pagelimits.h"

namespace fs = std::filesystem;

namespace {

bool isPageFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return false;
  char magic[kPageMagic.size()] = {};
  std::ifstream(fs::path(path), std::ios::binary).read(magic, sizeof magic);
  return std::string_view(magic, sizeof magic) == kPageMagic;
}

KitMessage problemOf(const std::string& font) try {
  return {font, 0, reportFont(font).problem};
} catch (const KitError& e) {
  return e.messages.front();
}

}  // namespace

std::vector<KitMessage> explainRun(const std::string& page, const std::vector<std::string>& unusableFonts,
                                   const std::vector<std::string>& read) {
  std::vector<KitMessage> all;
  for (const std::string& file : read)
    if (isPageFile(file) && pageHasTooManyWidgets(readFile(file)))
      all.push_back({fs::path(file).filename().string(), 0, kPageHasTooManyWidgets});
  for (const std::string& font : unusableFonts)
    all.push_back(problemOf((fs::path(page).parent_path() / font).generic_string()));
  return all;
}
