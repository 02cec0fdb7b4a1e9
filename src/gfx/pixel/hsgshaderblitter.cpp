#include "gfx/pixel/hsgshaderblitter.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgembossshader.h"
#include "gfx/pixel/maskwalk.h"

hsGShaderBlitter::hsGShaderBlitter(const hsGBitmap& device, const hsGAttribute& attr, hsGShader* shader,
                                   int32_t maskType)
    : hsGDeviceBlitter(device), fColor(hsPremultiply(attr.Color())), fShader(hsShare(shader)), fMaskType(maskType) {
  std::fill_n(fColors, kSpan, shader ? 0 : fColor);  // a shader may leave them as they are
  bool opaque = shader ? shader->IsOpaque() : hsColor32A(fColor) == 0xFF;
  if (maskType == kMask_3D) opaque = false;
  if (attr.XferMode()) {
    fXfer = hsShare(attr.XferMode());
  } else if (opaque) {
    fXfer = hsMake<hsGSrcMode>();
  } else {
    fXfer = hsMake<hsGSrcOverMode>();
  }
  fXfer->SetOpaque(opaque);
}

void hsGShaderBlitter::ShadeSpan(hsGShader* shader, int32_t y, int32_t x, int32_t count) {
  shader->ShadeRow(y, x, count, fSpan);
}

void hsGShaderBlitter::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad count")) return;
  const uint8_t* alpha = fAlpha;
  while (width > 0) {
    const int32_t chunk = std::min(width, kSpan);
    if (fShader) ShadeSpan(fShader.get(), y, x, chunk);
    XferSpan(y, x, chunk, alpha);
    if (alpha) alpha += chunk;
    x += chunk;
    width -= chunk;
  }
}

// Spans of a lit mask go to the mode whole.
void hsGShaderBlitter::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (mask.fMaskType != kMask_3D) return hsGBlitter::BlitMask(mask, clip);
  if (mask.fBounds.IsEmpty()) return;
  hsGEmbossShader emboss(mask, fShader.get(), fColor);
  std::vector<hsGColor32> row(size_t(mask.fBounds.Width()));
  fSpan = row.data();
  hsWalkMaskSpans(mask.fBounds, clip, [&](int32_t y, int32_t x, int32_t width) {
    ShadeSpan(&emboss, y, x, width);
    XferSpan(y, x, width, nullptr);
  });
  fSpan = fColors;
}

void hsGShaderBlitter8::XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) {
  fXfer->Xfer8(count, fSpan, Pixels<uint8_t>(y, x), fDevice.fColorTable.get(), alpha);
}

void hsGShaderBlitter16::XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) {
  fXfer->Xfer16(count, fSpan, Pixels<uint16_t>(y, x), alpha);
}

hsGShaderBlitterA::hsGShaderBlitterA(const hsGBitmap& device, const hsGAttribute& attr, hsGShader* shader,
                                     int32_t maskType)
    : hsGShaderBlitter(device, attr, shader, maskType) {
  std::memset(fColors, shader ? 0 : int(hsColor32A(fColor)), sizeof fColors);
}

void hsGShaderBlitterA::ShadeSpan(hsGShader* shader, int32_t y, int32_t x, int32_t count) {
  shader->ShadeAlphaRow(y, x, count, AlphaSpan());
}

void hsGShaderBlitterA::XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) {
  fXfer->XferA(count, AlphaSpan(), Pixels<uint8_t>(y, x), alpha);
}
