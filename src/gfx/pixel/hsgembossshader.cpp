#include "gfx/pixel/hsgembossshader.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"

hsGEmbossShader::hsGEmbossShader(const hsGMask& mask, hsGShader* shader, hsGColor32 color)
    : fMask(mask), fShader(hsShare(shader)), fColor(color) {
  (void)hsAssert(mask.fMaskType == kMask_3D, "bad masktype");
}

void hsGEmbossShader::ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) {
  const hsIntRect& bounds = fMask.fBounds;
  if (!hsAssert(x >= bounds.fLeft && x < bounds.fRight, "bad x")) return;
  if (!hsAssert(y >= bounds.fTop && y < bounds.fBottom, "bad y")) return;
  if (fShader) {
    fShader->ShadeRow(y, x, count, colors);
  } else {
    std::fill_n(colors, count, fColor);
  }
  const uint8_t* cover = fMask.Row(y) + (x - bounds.fLeft);
  const uint8_t* multiply = cover + fMask.PlaneSize();
  const uint8_t* add = multiply + fMask.PlaneSize();
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t a = hsColor32A(colors[i]);
    if (fShader && a == 0) continue;
    const uint32_t a2 = (cover[i] * (a + 1)) >> 8;
    if (a2 == 0) {
      colors[i] = 0;
      continue;
    }
    // Colours from a shader are lit a touch less.
    const uint32_t lit = (add[i] * (fShader ? a : a + 1)) >> 8;
    const auto channel = [&](uint32_t c) { return std::min(((c * (multiply[i] + 1u)) >> 8) + lit, a2); };
    colors[i] = hsMakeColor32(a2, channel(hsColor32R(colors[i])), channel(hsColor32G(colors[i])),
                              channel(hsColor32B(colors[i])));
  }
}
