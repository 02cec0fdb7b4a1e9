// Colour from a mask of three planes: lit from above, shaded below.
#pragma once

#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgshader.h"

class hsGEmbossShader : public hsGShader {
 public:
  // The mask must outlive the shader; it is one of three planes ("bad masktype"). Colours come from `shader`, or are
  // all `color`, premultiplied.
  hsGEmbossShader(const hsGMask& mask, hsGShader* shader, hsGColor32 color);

  void ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override;

 private:
  const hsGMask& fMask;
  hsRef<hsGShader> fShader;
  hsGColor32 fColor;
};
