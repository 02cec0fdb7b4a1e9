#include "host/hostoperations.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <string>

#include "engine/ascii.h"
#include "host/color.h"
#include "host/host.h"
#include "host/shell.h"

namespace {

Shell* theShell = nullptr;

}  // namespace

void hostAttach(Shell* shell) { theShell = shell; }

void hostCreateScreen(int width, int height, int depth) {
  theShell->screen.create(width, height, depth);
  theShell->desktop.createScreen("KOVA Screen", width, height);
}

void hostSetDepth(int depth) { theShell->screen.sourceDepth = depth; }

int hostSetPalette(const uint32_t* colors, int count) {
  theShell->screen.setPalette(colors, count);
  return count;
}

void hostPresentRect(const void* source, int x, int y, int w, int h) {
  theShell->screen.convert(source, x, y, w, h);
  theShell->desktop.invalidate({x, y, w, h});
}

void hostConvertRgbToYCrCb(const uint32_t* source, uint32_t* destination, int count) {
  std::transform(source, source + count, destination, rgbToYCrCb);
}

int hostLog(const char* format, ...) {
  char line[2048];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  for (const char* c = line; *c; ++c) hostPutChar(*c);
  return 0;
}

void hostPutChar(char c) {
  if (!theShell || !theShell->console) return;
  theShell->desktop.consoleOutput(c);
  theShell->console->consolePutChar(c);
}

void hostBreathe() {
  if (theShell) theShell->desktop.breathe();
}

uint32_t hostMilliseconds() { return theShell->desktop.milliseconds(); }

// ---- files

namespace {

namespace fs = std::filesystem;

FILE* handle(HostFile* file) { return reinterpret_cast<FILE*>(file); }

bool isRegular(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

// The entry of `folder` called `name` in whatever case; an empty path when there is none. Of several the first by
// name, so that a page finds the same file each time.
fs::path findIgnoringCase(const fs::path& folder, const std::string& name) {
  std::error_code ignored;
  fs::path best;
  fs::directory_iterator entries(folder.empty() ? fs::path(".") : folder, ignored), end;
  for (; !ignored && entries != end; entries.increment(ignored)) {
    const fs::path entry = entries->path().filename();
    if (asciiEqualIgnoringCase(entry.c_str(), name.c_str()) && (best.empty() || entry < best)) best = entry;
  }
  return best.empty() ? fs::path() : folder / best;
}

fs::path resolve(const char* name) {
  std::string text = name;
  std::replace(text.begin(), text.end(), '\\', '/');
  const fs::path path = text;
  if (isRegular(path)) return path;

  fs::path found = path.root_path();
  std::error_code ignored;
  for (const fs::path& part : path.relative_path()) {
    const fs::path next = found / part;
    found = fs::exists(next, ignored) ? next : findIgnoringCase(found, part.string());
    if (found.empty()) return {};
  }
  return isRegular(found) ? found : fs::path();
}

}  // namespace

HostFile* hostOpen(const char* name) {
  const fs::path path = resolve(name);
  return path.empty() ? nullptr : reinterpret_cast<HostFile*>(std::fopen(path.c_str(), "rb"));
}

size_t hostRead(HostFile* file, void* buffer, size_t size) { return std::fread(buffer, 1, size, handle(file)); }

void hostClose(HostFile* file) { std::fclose(handle(file)); }

size_t hostTell(HostFile* file) { return size_t(std::ftell(handle(file))); }

size_t hostFileSize(HostFile* file) {
  const long position = std::ftell(handle(file));
  std::fseek(handle(file), 0, SEEK_END);
  const long size = std::ftell(handle(file));
  std::fseek(handle(file), position, SEEK_SET);
  return size < 0 ? 0 : size_t(size);
}

bool hostHasFileSystem() { return true; }
