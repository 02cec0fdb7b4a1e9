// Fonts by the names of their files, read once and kept with their bytes, which the scaler reads in place.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>

struct FontEntry {
  std::string name;
  std::unique_ptr<uint8_t[]> bytes;
  size_t size;
  uint32_t scalerFont;  // the graphics library's identifier of the font
};

// The fonts of one engine. An entry stays where it is as long as the engine.
class FontShelf {
 public:
  FontEntry* load(const char* fileName);
  const std::list<FontEntry>& all() const { return fonts; }

 private:
  FontEntry* read(const char* fileName);

  std::list<FontEntry> fonts;
};

FontShelf& currentFonts();  // of the engine that is current on this thread

// The font of a file; one that was loaded before, by a name equal but for case, is shared. Null when it can't be read.
FontEntry* fontLoad(const char* fileName);
