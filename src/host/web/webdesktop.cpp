#include "host/web/webdesktop.h"

#include <emscripten.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

// Module.fetchFile(path) answers a Uint8Array, or null for a file that isn't there. Returns the bytes, which the caller
// frees, and their number; null for none.
EM_JS(char*, fetchBytes, (const char* path, size_t* size), {
  const bytes = Module["fetchFile"] ? Module["fetchFile"](UTF8ToString(path)) : null;
  if (!bytes) return 0;
  const at = _malloc(bytes.length + 1);
  HEAPU8.set(bytes, at);
  HEAPU32[size >> 2] = bytes.length;
  return at;
});

int WebDesktop::run(uint32_t now, double budget) {
  clock = now;
  const double end = emscripten_get_now() + budget;
  do shell.step();
  while (shell.busy() && emscripten_get_now() < end);
  if (shell.busy()) return 0;
  const auto due = shell.nextTimer();
  if (!due) return -1;
  return *due <= clock ? 0 : int(std::min<uint32_t>(*due - clock, INT32_MAX));
}

void WebDesktop::invalidate(const DesktopRect& rect) {
  const bool isFirst = left == right;
  left = isFirst ? rect.x : std::min(left, rect.x);
  top = isFirst ? rect.y : std::min(top, rect.y);
  right = isFirst ? rect.x + rect.w : std::max(right, rect.x + rect.w);
  bottom = isFirst ? rect.y + rect.h : std::max(bottom, rect.y + rect.h);
}

WebFrame WebDesktop::frame() {
  const ScreenSurface& screen = shell.screen;
  WebFrame changed{std::max(left, 0), std::max(top, 0), 0, 0, nullptr};
  changed.w = std::min(right, screen.screenWidth) - changed.x;
  changed.h = std::min(bottom, screen.screenHeight) - changed.y;
  left = top = right = bottom = 0;
  if (changed.w <= 0 || changed.h <= 0) return {};
  pixels.resize(size_t(changed.w) * size_t(changed.h));
  uint32_t* out = pixels.data();
  for (int row = 0; row < changed.h; ++row, out += changed.w) {
    const uint32_t* in = screen.dibBits.data() + size_t(changed.y + row) * size_t(screen.screenWidth) + changed.x;
    for (int i = 0; i < changed.w; ++i)
      out[i] = 0xFF000000 | (in[i] & 0xFF) << 16 | (in[i] & 0xFF00) | (in[i] >> 16 & 0xFF);
  }
  changed.pixels = pixels.data();
  return changed;
}

const std::string* WebDesktop::fileMade(const std::filesystem::path& path) {
  auto& files = shell.filesInMemory;
  if (const auto file = files.find(path); file != files.end()) return &file->second;
  if (missing.contains(path)) return nullptr;
  size_t size = 0;
  const std::unique_ptr<char, void (*)(void*)> bytes(fetchBytes(path.c_str(), &size), std::free);
  if (!bytes) {
    missing.insert(path);
    return nullptr;
  }
  fetched.insert(path);
  return &files.emplace(path, std::string(bytes.get(), size)).first->second;
}

void WebDesktop::forgetFetched() {
  for (const auto& path : fetched) shell.filesInMemory.erase(path);
  fetched.clear();
  missing.clear();
}
