// The desktop's picture of the television: the last stage of presentation.
//
// The engine's frame buffer stays in the player's own terms, 8 bits through a palette or 16 bits of video colour; only
// here do pixels become the desktop's 0x00RRGGBB.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

class ScreenSurface {
 public:
  void create(int width, int height, int depth);

  // Converts the rectangle of the frame buffer `source`, whose rows are as wide as the screen, by sourceDepth. The
  // rectangle is cut to the screen.
  void convert(const void* source, int x, int y, int w, int h);

  // Palette entry i becomes the desktop form of colors[i] for each i below count, at most 256.
  void setPalette(const uint32_t* colors, int count);

  // Moves the pixels out; what is left is a screen of no size.
  std::vector<uint32_t> take();

  int screenWidth = 0;   // pixels
  int screenHeight = 0;  // pixels
  int sourceDepth = 8;   // bits per pixel of the frame buffer
  std::array<uint32_t, 256> palette{};
  std::vector<uint32_t> dibBits;  // screenWidth x screenHeight, 0x00RRGGBB, rows from the top
};
