#include "engine/text/fonts.h"

#include <new>

#include "engine/base/hostfile.h"
#include "engine/base/watch.h"
#include "gfx/foundation/hsascii.h"
#include "gfx/text/hsgfontregistry.h"

FontEntry* FontShelf::load(const char* fileName) {
  for (FontEntry& entry : fonts)
    if (hsAsciiEqualIgnoringCase(entry.name.c_str(), fileName)) return &entry;
  FontEntry* entry = read(fileName);
  if (const ObserverReport report; report) report->fontOpened(fileName, entry != nullptr);
  return entry;
}

FontEntry* FontShelf::read(const char* fileName) {
  const HostFilePtr file = openHostFile(fileName);
  if (!file) return nullptr;
  const size_t size = hostFileSize(file.get());
  if (size > INT32_MAX) return nullptr;
  // Not a vector, which would fill megabytes with zeros first. An empty file has an address here, too: it is kept like
  // any that holds no font.
  std::unique_ptr<uint8_t[]> bytes(new (std::nothrow) uint8_t[size]);
  if (!bytes || hostRead(file.get(), bytes.get(), size) != size) return nullptr;
  FontEntry& entry = fonts.emplace_front(FontEntry{fileName, std::move(bytes), size, 0});
  // The entry keeps the bytes, so the registry doesn't own them.
  entry.scalerFont = hsGFontRegistry::RegisterMemory(uint32_t(size), entry.bytes.get(), false, kFontFormat_TrueType);
  if (entry.scalerFont == 0) {
    fonts.pop_front();
    return nullptr;
  }
  return &entry;  // a file that holds no font is kept like any other; it draws nothing
}

FontEntry* fontLoad(const char* fileName) { return currentFonts().load(fileName); }
