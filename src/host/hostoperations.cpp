// The operations of host.h, carried out by the shell of the current engine.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "engine/base/watch.h"
#include "engine/engine.h"
#include "gfx/foundation/hsascii.h"
#include "host/color.h"
#include "host/host.h"
#include "host/shell.h"
#include "platform/openfile.h"

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
  if (Shell* shell = currentShell()) shell->desktop.systemMessage(line);
  return 0;
}

void hostPutChar(char c) {
  Shell* shell = currentShell();
  if (!shell || !shell->console) return;
  if (EngineObserver* observer = currentObserver()) reportCharacter(*observer, c);
  shell->desktop.consoleOutput(c);
  shell->console->consolePutChar(c);
}

bool hostBreathe() {
  Shell* shell = currentShell();
  return !shell || shell->desktop.breathe();
}

uint32_t hostMilliseconds() { return currentShell()->desktop.milliseconds(); }

// ---- files

// On the disk, or in memory that the shell owns.
struct HostFile {
  std::unique_ptr<FILE, int (*)(FILE*)> disk{nullptr, std::fclose};
  std::string_view memory;
  size_t position = 0;  // in memory
};

namespace {

namespace fs = std::filesystem;

bool isRegular(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

// A pipe, a device, a socket: what no page opens.
bool isSpecial(const fs::path& path) {
  std::error_code ignored;
  return fs::is_other(path, ignored);
}

// The entry of `folder` called `name` in whatever case; an empty path when there is none. Of several the first by
// name, so that a page finds the same file each time.
fs::path findIgnoringCase(const fs::path& folder, const std::string& name) {
  std::error_code ignored;
  fs::path best;
  fs::directory_iterator entries(folder.empty() ? fs::path(".") : folder, ignored), end;
  for (; !ignored && entries != end; entries.increment(ignored)) {
    const fs::path entry = entries->path().filename();
    if (hsAsciiEqualIgnoringCase(entry.string().c_str(), name.c_str()) && (best.empty() || entry < best)) best = entry;
  }
  return best.empty() ? fs::path() : folder / best;
}

// The page's folder; empty for the folder that the program was started in.
fs::path folder() {
  const Shell* shell = currentShell();
  return shell ? shell->folder : fs::path();
}

// With the separators of this desktop, which take a page's backslashes for characters of the name.
fs::path plainPath(const char* name) {
  std::string text = name;
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

// What the name means, in whatever case, other than a folder; empty for nothing.
fs::path resolve(const fs::path& path) {
  const fs::path asItStands = folder() / path;
  if (isRegular(asItStands)) return asItStands;

  fs::path found = path.is_absolute() ? path.root_path() : folder();
  std::error_code ignored;
  for (const fs::path& part : path.relative_path()) {
    const fs::path next = found / part;
    found = fs::exists(next, ignored) ? next : findIgnoringCase(found, part.string());
    if (found.empty()) return {};
  }
  return isRegular(found) || isSpecial(found) ? found : fs::path();
}

// The bytes of a file in memory, found by the same rules as one of the disk; null when there is none.
const std::string* findInMemory(const fs::path& name) {
  Shell* shell = currentShell();
  if (!shell) return nullptr;
  std::error_code ignored;  // an empty name has no place
  const fs::path path = fs::absolute(shell->folder / name, ignored).lexically_normal();
  if (const std::string* made = shell->desktop.fileMade(path)) return made;
  if (shell->filesInMemory.empty()) return nullptr;
  if (const auto file = shell->filesInMemory.find(path); file != shell->filesInMemory.end()) return &file->second;
  if (isRegular(path)) return nullptr;
  for (const auto& [known, bytes] : shell->filesInMemory)
    if (hsAsciiEqualIgnoringCase(known.string().c_str(), path.string().c_str())) return &bytes;
  return nullptr;
}

constexpr uintmax_t kBlock = 4096;  // bytes of the disk that a file takes at least

bool isLarger(const fs::path& file, uintmax_t bytes) {
  std::error_code error;
  const uintmax_t size = bytes == UINTMAX_MAX ? 0 : fs::file_size(file, error);
  return !error && size > bytes;
}

void refuse(const char* name, const char* why) { hostLog("'%s' is not opened: %s\n", name, why); }

}  // namespace

HostFile* hostOpen(const char* name) {
  auto file = std::make_unique<HostFile>();
  Shell* shell = currentShell();
  const fs::path wanted = plainPath(name);
  if (const std::string* bytes = findInMemory(wanted)) {
    file->memory = *bytes;
    return file.release();
  }
  const fs::path path = resolve(wanted);
  if (shell && !path.empty() && !shell->access.mayRead(path, shell->folder)) {
    refuse(name, "it is outside the folders that the page may read");
    return nullptr;
  }
  if (isSpecial(path)) {
    refuse(name, "it is no plain file");
    return nullptr;
  }
  if (shell && !path.empty() && isLarger(path, shell->access.largest)) {
    refuse(name, "it is too large");
    return nullptr;
  }
  if (!path.empty()) file->disk.reset(openFile(path, "rb"));
  if (!file->disk) {
    if (shell) shell->desktop.fileMissing(folder() / wanted);
    return nullptr;
  }
  if (shell) shell->desktop.fileOpened(path);
  return file.release();
}

size_t hostRead(HostFile* file, void* buffer, size_t size) {
  if (file->disk) {
    size = std::fread(buffer, 1, size, file->disk.get());
  } else {
    size = file->memory.copy(static_cast<char*>(buffer), size, file->position);
    file->position += size;
  }
  if (DrawCost* cost = currentCost()) cost->bytesRead += size;
  return size;
}

void hostClose(HostFile* file) { delete file; }

size_t hostTell(HostFile* file) { return file->disk ? size_t(std::ftell(file->disk.get())) : file->position; }

size_t hostFileSize(HostFile* file) {
  if (!file->disk) return file->memory.size();
  FILE* disk = file->disk.get();
  const long position = std::ftell(disk);
  if (position < 0 || std::fseek(disk, 0, SEEK_END) != 0) return kHostFileFailed;
  const long size = std::ftell(disk);
  return std::fseek(disk, position, SEEK_SET) == 0 ? size_t(size) : kHostFileFailed;
}

bool hostHasFileSystem() { return true; }

std::string hostFullName(const char* name) { return (folder() / name).string(); }

bool hostLetsScriptOpen(const char* name, bool forWriting) {
  const Shell* shell = currentShell();
  if (!shell) return true;
  if (!shell->access.scriptsOpenFiles) {
    refuse(name, "scripts may open no files");
    return false;
  }
  if (!forWriting) return true;
  if (!shell->access.scriptsWriteFiles) {
    refuse(name, "scripts may write no files");
    return false;
  }
  const std::string file = hostFullName(name);
  if (!shell->access.mayWrite(file, shell->folder)) {
    refuse(name, "it is no plain file in the page's folder");
    return false;
  }
  std::error_code ignored;
  return fs::exists(file, ignored) || hostLetsScriptWrite(kBlock);
}

bool hostLetsScriptWrite(uintmax_t bytes) {
  Shell* shell = currentShell();
  if (!shell) return true;
  const uintmax_t most = shell->access.mostWritten;
  if (shell->scriptsHaveWrittenAll) return false;
  if (bytes <= most - *shell->writtenByScripts) {
    *shell->writtenByScripts += bytes;
    return true;
  }
  shell->scriptsHaveWrittenAll = true;
  hostLog("Scripts may write no more than %s bytes\n", std::to_string(most).c_str());
  return false;
}
