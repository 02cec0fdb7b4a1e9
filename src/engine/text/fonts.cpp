#include "engine/text/fonts.h"

#include "engine/base/hostfile.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgscalercontextt2k.h"

FontEntry* FontShelf::load(const char* fileName) {
  for (FontEntry& entry : fonts)
    if (hsAsciiEqualIgnoringCase(entry.name.c_str(), fileName)) return &entry;
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
  // A file that holds no font is kept, so that it is read and logged once; it draws nothing.
  if (!hsFontOpens(entry.scalerFont)) hostLog("Error loading font '%s'\n", fileName);
  return &entry;
}

FontEntry* fontLoad(const char* fileName) { return currentFonts().load(fileName); }
