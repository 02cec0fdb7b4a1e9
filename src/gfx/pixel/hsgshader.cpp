#include "gfx/pixel/hsgshader.h"

#include <algorithm>
#include <iterator>
#include <cstring>

void hsGShader::ShadeAlphaRow(int32_t y, int32_t x, int32_t count, uint8_t bytes[]) {
  if (IsOpaque()) {
    std::memset(bytes, 0xFF, size_t(count));
    return;
  }
  hsGColor32 colors[32] = {};  // a shader may leave them as they are
  while (count > 0) {
    const int32_t chunk = std::min<int32_t>(count, std::size(colors));
    ShadeRow(y, x, chunk, colors);
    for (int32_t i = 0; i < chunk; ++i) *bytes++ = uint8_t(hsColor32A(colors[i]));
    x += chunk;
    count -= chunk;
  }
}
