// Which blitter draws a bitmap.
#include "gfx/foundation/hsfixed.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmapblitter.h"
#include "gfx/pixel/hsgspriteblitter.h"

hsGBlitter* hsGAttribute::GetBitmapBlitter(const hsGBitmap& bitmap, int32_t, const hsGBitmap& source,
                                           const hsMatrix& matrix) {
  if (matrix.GetType() <= hsMatrix::kTranslateType) {
    const int32_t left = hsFixedRound(matrix.fMap[0][2]), top = hsFixedRound(matrix.fMap[1][2]);
    return ChooseSpriteBlitter(bitmap, source, left, top, fColor, fXferMode);
  }
  return new hsGNullBlitter;
}
