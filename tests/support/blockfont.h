// A font of blocks, for pages that draw text.
#pragma once

#include <fstream>

#include "t2k/fontbuilder.h"

// 1,000 units an em. At size 10, a is 4 x 7 pixels, 1 right of the pen, and takes 6; e acute is a pixel and takes 2; a
// space takes 3.
inline std::vector<uint8_t> BlockFontFile() {
  SfntBuilder font;
  font.AddContours({RectContour(0, 0, 500, 500)}, 600);
  font.characters[' '] = font.AddGlyph({}, 300, 0);
  font.characters['a'] = font.AddContours({RectContour(100, 0, 500, 700)}, 600);
  font.characters[0xE9] = font.AddContours({RectContour(100, 0, 200, 100)}, 200);
  return font.Build();
}

inline void WriteFile(const char* name, const std::vector<uint8_t>& bytes) {
  std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), long(bytes.size()));
}
