// The operations of host.h, carried out by the shell of the current engine.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <string>

#include "engine/engine.h"
#include "gfx/foundation/hsascii.h"
#include "host/color.h"
#include "host/host.h"
#include "host/shell.h"

namespace {

// Null while no engine is current.
Shell* currentShell() {
  Engine* engine = currentEngine();
  return engine ? static_cast<Shell*>(&engine->host) : nullptr;
}

}  // namespace

void hostCreateScreen(int width, int height, int depth) {
  currentShell()->screen.create(width, height, depth);
  currentShell()->desktop.createScreen("KOVA Screen", width, height);
}

void hostSetDepth(int depth) { currentShell()->screen.sourceDepth = depth; }

int hostSetPalette(const uint32_t* colors, int count) {
  currentShell()->screen.setPalette(colors, count);
  return count;
}

void hostPresentRect(const void* source, int x, int y, int w, int h) {
  Shell* shell = currentShell();
  shell->screen.convert(source, x, y, w, h);
  shell->desktop.invalidate({x, y, w, h});
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
  Shell* shell = currentShell();
  if (!shell || !shell->console) return;
  shell->desktop.consoleOutput(c);
  shell->console->consolePutChar(c);
}

void hostBreathe() {
  if (Shell* shell = currentShell()) shell->desktop.breathe();
}

uint32_t hostMilliseconds() { return currentShell()->desktop.milliseconds(); }

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
    if (hsAsciiEqualIgnoringCase(entry.c_str(), name.c_str()) && (best.empty() || entry < best)) best = entry;
  }
  return best.empty() ? fs::path() : folder / best;
}

// The page's folder; empty for the folder that the program was started in.
fs::path folder() {
  const Shell* shell = currentShell();
  return shell ? shell->folder : fs::path();
}

fs::path resolve(const char* name) {
  std::string text = name;
  std::replace(text.begin(), text.end(), '\\', '/');
  const fs::path path = text;
  const fs::path asItStands = folder() / path;
  if (isRegular(asItStands)) return asItStands;

  fs::path found = path.is_absolute() ? path.root_path() : folder();
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

std::string hostFullName(const char* name) { return (folder() / name).string(); }
