#include "engine/text/fonts.h"

#include "engine/base/hostfile.h"
#include "engine/base/watch.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/text/hsgfontregistry.h"

FontEntry* FontShelf::load(const char* fileName) {
  for (FontEntry& entry : fonts)
    if (hsAsciiEqualIgnoringCase(entry.name.c_str(), fileName)) return &entry;
  FontEntry* entry = read(fileName);
  if (const Telling told; told) told->fontOpened(fileName, entry != nullptr);
  return entry;
}

FontEntry* FontShelf::read(const char* fileName) {
  const HostFilePtr file = openHostFile(fileName);
  if (!file) return nullptr;
  auto bytes = readWhole(file.get());
  if (!bytes || bytes->size() > INT32_MAX) return nullptr;
  bytes->reserve(1);  // so that an empty file has an address, too: it is kept like any that holds no font
  FontEntry& entry = fonts.emplace_front(FontEntry{fileName, std::move(*bytes), 0});
  // The entry keeps the bytes, so the registry doesn't own them.
  entry.scalerFont =
      hsGFontRegistry::RegisterMemory(uint32_t(entry.bytes.size()), entry.bytes.data(), false, kFontFormat_TrueType);
  if (entry.scalerFont == 0) {
    fonts.pop_front();
    return nullptr;
  }
  return &entry;  // a file that holds no font is kept like any other; it draws nothing
}

FontEntry* fontLoad(const char* fileName) { return currentFonts().load(fileName); }
