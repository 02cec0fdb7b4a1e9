// Which blitter draws a paint on a bitmap.
#include "gfx/pixel/hsgblitter_choose.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgblitter16.h"
#include "gfx/pixel/hsgblitter8.h"
#include "gfx/pixel/hsgblittera.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgshaderblitter.h"

bool hsIsPlainPaint(const hsGAttribute& attr) { return !attr.Shader() && !attr.XferMode(); }

namespace {

bool IsFull(const hsGAttribute& attr, int32_t maskType) {
  return attr.Color().fA >> 8 == 0xFF && maskType == kMask_Bit;
}

hsGBlitter* ChooseA(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  hsThrowIfNilParam(hsAssert(bitmap.fConfig == hsGBitmap::kConfig_Alpha8, "expected alpha device") ? &bitmap : nullptr);
  // A mask of three planes still takes a solid blitter here.
  if (!hsIsPlainPaint(attr)) return new hsGShaderBlitterA(bitmap, attr, attr.Shader(), maskType);
  if (IsFull(attr, maskType)) return new hsGColorBlitterAOpaque(bitmap, attr.Color());
  return new hsGColorBlitterA(bitmap, attr.Color());
}

}  // namespace

hsGBlitter* hsChooseBlitter16(const hsGBitmap& bitmap, const hsGAttribute& attr, hsGShader* shader, int32_t maskType) {
  hsThrowIfNilParam(hsAssert(bitmap.fPixelSize == 16, "expected device depth 16") ? &bitmap : nullptr);
  if (shader || attr.XferMode() || maskType == kMask_3D) return new hsGShaderBlitter16(bitmap, attr, shader, maskType);
  if (IsFull(attr, maskType)) return new hsGColorBlitter16Opaque(bitmap, attr.Color());
  return new hsGColorBlitter16(bitmap, attr.Color());
}

hsGBlitter* hsChooseBlitter8(const hsGBitmap& bitmap, const hsGAttribute& attr, hsGShader* shader, int32_t maskType) {
  hsThrowIfNilParam(hsAssert(bitmap.fPixelSize == 8, "expected device depth 8") ? &bitmap : nullptr);
  hsThrowIfNilParam(hsAssert(bitmap.fColorTable, "need color table") ? &bitmap : nullptr);
  if (shader || attr.XferMode() || maskType == kMask_3D) return new hsGShaderBlitter8(bitmap, attr, shader, maskType);
  if (maskType != kMask_Bit) return new hsGColorBlitter8(bitmap, hsPaletteColor(bitmap, attr));
  const int32_t index = attr.ColorIndex();
  if (index < 0 && attr.Color().fA >> 8 != 0xFF) return new hsGColorBlitter8(bitmap, attr.Color());
  return new hsGIndexBlitter(bitmap, attr, index);
}

hsGBlitter* hsGBlitter::Choose(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (attr.XferMode()) {
    hsGBlitter* own = attr.XferMode()->ChooseBlitter(bitmap, attr.Shader(), attr.Color(), maskType);
    if (own) return own;
  }
  if (bitmap.fConfig == hsGBitmap::kConfig_Alpha8) return ChooseA(bitmap, attr, maskType);
  if (bitmap.fPixelSize == 16) return hsChooseBlitter16(bitmap, attr, attr.Shader(), maskType);
  if (bitmap.fPixelSize == 8) return hsChooseBlitter8(bitmap, attr, attr.Shader(), maskType);
  hsThrowReported("nil param", 0, hsException::kNilParam);
}
