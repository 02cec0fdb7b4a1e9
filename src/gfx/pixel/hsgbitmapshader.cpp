#include "gfx/pixel/hsgbitmapshader.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/texels.h"

hsGBitmapShader::hsGBitmapShader(const hsGBitmap& source, TileMode tileMode, uint8_t pixelSize)
    : fSource(source), fHasAlpha(source.fConfig == hsGBitmap::kConfig_ARGB32), fTileMode(tileMode), fReads(pixelSize) {}

void hsGBitmapShader::SetBitmap(const hsGBitmap* bitmap) {
  if (!hsAssert(bitmap, "bm is nil")) return;
  fSource = *bitmap;
  fHasAlpha = fSource.fConfig == hsGBitmap::kConfig_ARGB32;
}

void hsGBitmapShader::SetContext(const hsGBitmap&, const hsGAttribute& attr, const hsMatrix& matrix) {
  const bool hasKey = fSource.fConfig == hsGBitmap::kConfig_Index8 && (fSource.fFlags & hsGBitmap::kHasTransparent);
  fDoFilter = attr.Flags() & hsGAttribute::kFilterBitmaps;
  fAlpha = uint8_t(attr.Color().fA >> 8);
  fOpaque = !fHasAlpha && fAlpha == 0xFF && !hasKey;
  hsMatrix total;
  total.SetConcat(matrix, fLocalMatrix);
  if (total.Invert(&fInverse)) {
    fInverseType = fInverse.GetType();
  } else {
    fInverseType = kNoInverse;
    hsDebugMessage("cannot invert matrix", 0);
  }
}

void hsGBitmapShader::ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) {
  if (fInverseType != kNoInverse && hsTexels::CanRead(fSource, fReads)) Shade(y, x, count, colors);
}

namespace {

// ---- What becomes of a colour that was looked up

// All four bytes scaled by the paint's alpha.
struct Scaled {
  explicit Scaled(uint8_t alpha) : scale(alpha + 1u) {}
  hsGColor32 operator()(hsGColor32 c) const { return hsScaleColor32(c, scale); }
  uint32_t scale;
};

// The paint's alpha in place of the colour's own, and the rest scaled by it.
struct WithPaintAlpha {
  explicit WithPaintAlpha(uint8_t alpha) : scale(alpha + 1u), top(uint32_t{alpha} << 24) {}
  hsGColor32 operator()(hsGColor32 c) const { return (hsScaleColor32(c, scale) & 0x00FFFFFF) | top; }
  uint32_t scale;
  hsGColor32 top;
};

struct Span {
  const hsMatrix& inverse;
  uint32_t type;
  int32_t y, x, count;
  hsGColor32* colors;
};

template <bool kFilter, class Tile, class Texels, class Finish>
void ShadeSpan(const Span& span, const Texels& texels, Finish finish) {
  const hsFixed offset = kFilter ? 0 : kFixedHalf;
  hsWalkSource(span.inverse, span.type, span.y, span.x, span.count, offset, [&](int32_t i, hsFixed x, hsFixed y) {
    const int32_t ix = Tile::Map(x >> 16, texels.width), iy = Tile::Map(y >> 16, texels.height);
    const bool nothing = ix == kNoTexel || iy == kNoTexel || texels.IsKey(ix, iy);
    if (nothing) {
      span.colors[i] = 0;
    } else if constexpr (kFilter) {
      span.colors[i] = finish(hsFilteredTexel(texels, x, y, ix, iy));
    } else {
      span.colors[i] = finish(texels.At(ix, iy));
    }
  });
}

template <bool kFilter, class Texels, class Finish>
void ShadeTiled(hsGBitmapShader::TileMode mode, const Span& span, const Texels& texels, Finish finish) {
  switch (mode) {
    case hsGBitmapShader::kTile_Clamp: return ShadeSpan<kFilter, hsTileClamp>(span, texels, finish);
    case hsGBitmapShader::kTile_Repeat: return ShadeSpan<kFilter, hsTileRepeat>(span, texels, finish);
    case hsGBitmapShader::kTile_Mirror: return ShadeSpan<kFilter, hsTileMirror>(span, texels, finish);
    case hsGBitmapShader::kTile_None: return ShadeSpan<kFilter, hsTileNone>(span, texels, finish);
  }
}

// ---- Workers

// Anything of 32 bits.
class General32 : public hsGBitmapShader {
 public:
  General32(const hsGBitmap& source, TileMode tileMode) : hsGBitmapShader(source, tileMode, 32) {}

 protected:
  void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    const Span span{fInverse, fInverseType, y, x, count, colors};
    if (fDoFilter) {
      ShadeTiled<true>(fTileMode, span, hsTexels32(fSource), Scaled(fAlpha));
    } else {
      ShadeTiled<false>(fTileMode, span, hsTexels32(fSource), Scaled(fAlpha));
    }
  }
};

// 32 bits without alpha, filtered.
class FilteredRGB : public hsGBitmapShader {
 public:
  FilteredRGB(const hsGBitmap& source, TileMode tileMode) : hsGBitmapShader(source, tileMode, 32) {}

 protected:
  void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    if (!hsAssert(fDoFilter, "bad doFilter") || !hsAssert(!fHasAlpha, "bad hasAlphaChannel")) return;
    ShadeTiled<true>(fTileMode, {fInverse, fInverseType, y, x, count, colors}, hsTexels32(fSource), Scaled(fAlpha));
  }
};

// 32 bits without alpha, the nearest pixel, one tile rule.
template <class Tile>
class NearestRGB : public hsGBitmapShader {
 public:
  NearestRGB(const hsGBitmap& source, TileMode tileMode) : hsGBitmapShader(source, tileMode, 32) {}

 protected:
  void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    if (!hsAssert(!fHasAlpha, "oops")) return;
    ShadeSpan<false, Tile>({fInverse, fInverseType, y, x, count, colors}, hsTexels32(fSource), Scaled(fAlpha));
  }
};

// A palette, the nearest pixel, one tile rule.
template <class Tile, class Finish>
class NearestIndex : public hsGBitmapShader {
 public:
  NearestIndex(const hsGBitmap& source, TileMode tileMode) : hsGBitmapShader(source, tileMode, 8) {}

 protected:
  void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    ShadeSpan<false, Tile>({fInverse, fInverseType, y, x, count, colors}, hsTexelsIndex(fSource), Finish(fAlpha));
  }
};

// Anything with a palette.
class GeneralIndex : public hsGBitmapShader {
 public:
  GeneralIndex(const hsGBitmap& source, TileMode tileMode) : hsGBitmapShader(source, tileMode, 8) {}

 protected:
  void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    const Span span{fInverse, fInverseType, y, x, count, colors};
    if (fDoFilter) {
      ShadeTiled<true>(fTileMode, span, hsTexelsIndex(fSource), WithPaintAlpha(fAlpha));
    } else {
      ShadeTiled<false>(fTileMode, span, hsTexelsIndex(fSource), WithPaintAlpha(fAlpha));
    }
  }
};

}  // namespace

hsGBitmapShader* hsGBitmapShader::Create(const hsGBitmap& source, const hsGAttribute& attr, const hsMatrix& matrix,
                                         TileMode tileMode) {
  const bool perspective = matrix.GetType() & hsMatrix::kPerspectiveType;
  const bool filter = attr.Flags() & hsGAttribute::kFilterBitmaps;
  if (source.fPixelSize == 32) {
    if (perspective || source.fConfig == hsGBitmap::kConfig_ARGB32) return new General32(source, tileMode);
    if (filter) return new FilteredRGB(source, tileMode);
    if (tileMode == kTile_Clamp) return new NearestRGB<hsTileClamp>(source, tileMode);
    if (tileMode == kTile_Repeat) return new NearestRGB<hsTileRepeat>(source, tileMode);
    return new General32(source, tileMode);
  }
  if (source.fConfig == hsGBitmap::kConfig_Index8) {
    if (perspective || filter) return new GeneralIndex(source, tileMode);
    if (tileMode == kTile_Clamp) return new NearestIndex<hsTileClamp, Scaled>(source, tileMode);
    if (tileMode == kTile_Repeat) return new NearestIndex<hsTileRepeat, WithPaintAlpha>(source, tileMode);
    return new GeneralIndex(source, tileMode);
  }
  hsDebugMessage("missing bitmap-core-shader", source.fPixelSize);
  return nullptr;
}
