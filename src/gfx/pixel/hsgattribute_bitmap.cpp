// Which blitter draws a bitmap.
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfixed.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmapblitter.h"
#include "gfx/pixel/hsgbitmapshader.h"
#include "gfx/pixel/hsgblitter_choose.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgsprite_choose.h"
#include "gfx/pixel/texels.h"

namespace {

// The paint with the source as its shader, by one of the two choosers; nothing for a source that no shader reads.
template <class Choose>
hsGBlitter* ThroughShader(const hsGBitmap& device, const hsGAttribute& attr, const hsMatrix& matrix,
                          const hsGBitmap& source, int32_t maskType, Choose&& choose) {
  const auto shader = hsAdopt(hsGBitmapShader::Create(source, attr, matrix, hsGBitmapShader::kTile_Clamp));
  if (!shader) return new hsGNullBlitter;
  shader->SetContext(device, attr, matrix);
  return choose(device, attr, shader.get(), maskType);
}

hsGBlitter* Choose16(const hsGBitmap& device, const hsGAttribute& attr, const hsMatrix& inverse,
                     const hsGBitmap& source) {
  const bool perspective = inverse.GetType() & hsMatrix::kPerspectiveType;
  const bool filter = attr.Flags() & hsGAttribute::kFilterBitmaps;
  const uint32_t scale = (attr.Color().fA >> 8) + 1u;
  if (perspective) return new hsGBitmapBlitterPersp16(device, source, inverse, scale, filter);
  if (filter) return new hsGBitmapBlitterFilter16(device, source, inverse, scale);
  return new hsGBitmapBlitterAffine16(device, source, inverse, scale);
}

}  // namespace

hsGBlitter* ChooseIndex8Blitter(const hsGBitmap* device, const hsGAttribute* attr, const hsMatrix* matrix,
                                const hsGBitmap* source) {
  if (!hsAssert(device && attr, "nil param")) return new hsGNullBlitter;
  const bool good = device->fConfig == hsGBitmap::kConfig_Index8 && device->fColorTable;
  if (!hsAssert(good, "bad bitmap for ChooseIndex8Blitter")) return new hsGNullBlitter;
  if (!hsAssert(source, "need source bitmap")) return new hsGNullBlitter;
  if (!hsAssert(matrix, "nil matrix")) return new hsGNullBlitter;

  const bool indices = source->fConfig == hsGBitmap::kConfig_Index8 && attr->Color().fA >> 8 == 0xFF &&
                       !(attr->Flags() & hsGAttribute::kFilterBitmaps) &&
                       hsGColorTable::Equal(device->fColorTable.get(), source->fColorTable.get());
  if (indices) {
    hsMatrix inverse;
    if (!matrix->Invert(&inverse) || !hsTexels::CanRead(*source, 8)) return new hsGNullBlitter;
    if (!(inverse.GetType() & hsMatrix::kPerspectiveType)) return new hsGIndex8Affine(*device, *source, inverse);
  }
  return ThroughShader(*device, *attr, *matrix, *source, kMask_Bit, hsChooseBlitter8);
}

hsGBlitter* hsGAttribute::GetBitmapBlitter(const hsGBitmap& bitmap, int32_t maskType, const hsGBitmap& source,
                                           const hsMatrix& matrix) {
  if (matrix.GetType() <= hsMatrix::kTranslateType) {
    const int32_t left = hsFixedRound(matrix.fMap[0][2]), top = hsFixedRound(matrix.fMap[1][2]);
    return ChooseSpriteBlitter(bitmap, source, left, top, fColor, XferMode());
  }
  if (bitmap.fPixelSize == 8) return ChooseIndex8Blitter(&bitmap, this, &matrix, &source);
  hsMatrix inverse;
  if (!matrix.Invert(&inverse)) {
    hsDebugMessage("cannot invert matrix", 0);
    return new hsGNullBlitter;
  }
  if (source.fConfig == hsGBitmap::kConfig_Index8)
    return ThroughShader(bitmap, *this, matrix, source, maskType, hsChooseBlitter16);
  const bool reads = hsTexels::CanRead(source, 32);
  if (!fXferMode) {
    if (!hsAssert(bitmap.fPixelSize == 16 && reads, "missing bitmap blitter")) return new hsGNullBlitter;
    return Choose16(bitmap, *this, inverse, source);
  }
  if (!hsAssert(bitmap.fPixelSize == 16, "unsupported dst pixelsize") || !reads) return new hsGNullBlitter;
  return new hsGBitmapBlitterXfer16(bitmap, source, inverse, XferMode());
}
