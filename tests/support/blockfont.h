// A font of blocks, for pages that draw text.
#pragma once

#include <fstream>

#include "t2k/fontbuilder.h"

// 1,000 units an em, 800 above the baseline and 200 below. At size 10, in pixels:
//   a        4 x 7 from 1 on, advance 6        b    9 x 7, advance 10
//   space    nothing, advance 3                U+E9 1 x 1 from 1 on, advance 2
//   others   5 x 5, advance 6
// The lowest row of a glyph is that of the baseline.
inline std::vector<uint8_t> BlockFontFile() {
  SfntBuilder font;
  font.AddContours({RectContour(0, 0, 500, 500)}, 600);
  font.characters[' '] = font.AddGlyph({}, 300, 0);
  font.characters['a'] = font.AddContours({RectContour(100, 0, 500, 700)}, 600);
  font.characters['b'] = font.AddContours({RectContour(0, 0, 900, 700)}, 1000);
  font.characters[0xE9] = font.AddContours({RectContour(100, 0, 200, 100)}, 200);
  return font.Build();
}

inline void WriteFile(const char* name, const std::vector<uint8_t>& bytes) {
  std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), long(bytes.size()));
}
