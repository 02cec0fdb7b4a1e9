#include "gfx/pixel/hsgattribute.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsdescriptor.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/hsgshader.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/vector/hsgblitter.h"
#include "gfx/vector/hsgpatheffect.h"

namespace {

constexpr uint32_t kRefusedFlags = 0x7FFFCF00;
constexpr hsFixed kShortestLength = 8;  // of a mapped unit vector, below which no width is worked out

// Tells a value that is no good.
bool Refuse(bool bad, const char* words, int32_t value) {
  if (bad) hsStatusMessage(words, value);
  return bad;
}

// Owns a copy of value, or nothing when it is null or says nothing. Answers whether that changed anything.
template <class T>
bool Replace(std::unique_ptr<T>* stored, const T* value) {
  if (!value || *value == T()) {
    const bool had = *stored != nullptr;
    stored->reset();
    return had;
  }
  if (*stored && **stored == *value) return false;
  if (!*stored) *stored = std::make_unique<T>();
  **stored = *value;
  return true;
}

template <class T>
bool CopyOut(const std::unique_ptr<T>& stored, T* out) {
  if (!stored) return false;
  if (out) *out = *stored;
  return true;
}

void Drop(hsDescriptor*& desc) {
  if (desc) hsDescriptor::Delete(desc);
  desc = nullptr;
}

}  // namespace

hsGAttribute::hsGAttribute(uint32_t flags) : fFlags(flags) {}

hsGAttribute::~hsGAttribute() {
  Drop(fStrikeDesc);
  Drop(fSimpleDesc);
}

void hsGAttribute::CopyFrom(const hsGAttribute& other) {
  if (this == &other) return;
  fCachedBlitter.reset();
  Drop(fStrikeDesc);
  Drop(fSimpleDesc);
  fFlags = other.fFlags;
  fColor = other.fColor;
  fFrameSize = other.fFrameSize;
  fMiterLimit = other.fMiterLimit;
  fMinWidth = other.fMinWidth;
  fTextSize = other.fTextSize;
  fCapType = other.fCapType;
  fJoinType = other.fJoinType;
  fTextEncoding = other.fTextEncoding;
  fColorIndex = other.fColorIndex;
  fFontID = other.fFontID;
  fResolvedFontID = other.fResolvedFontID;
  fSimpleDirty = true;
  SetTextFace(other.fTextFace.get());
  SetTextSpacing(other.fTextSpacing.get());
  SetShader(other.Shader());
  SetXferMode(other.XferMode());
  SetMaskFilter(other.MaskFilter());
  SetPathEffect(other.PathEffect());
  SetRasterizer(other.Rasterizer());
  SetLayerFilter(other.LayerFilter());
}

void hsGAttribute::DropStrike() { Drop(fStrikeDesc); }

void hsGAttribute::SetFlags(uint32_t flags) {
  if (flags == fFlags || Refuse(flags & kRefusedFlags, "bad flags", int32_t(flags))) return;
  fFlags = flags;
  DropStrike();
  fSimpleDirty = true;
}

void hsGAttribute::SetColor(const hsGColor* color) {
  if (!Refuse(!color, "color is nil", 0)) fColor = *color;
}

void hsGAttribute::SetColorIndex(int32_t index) {
  if (index < 0) {
    fFlags &= ~uint32_t{kColorIndexInForce};
  } else {
    fFlags |= kColorIndexInForce;
    fColorIndex = uint8_t(index);
  }
}

void hsGAttribute::SetFrameSize(hsFixed width) {
  if (!Refuse(width < 0, "bad frameSize", width)) fFrameSize = width;
}

void hsGAttribute::SetMiterLimit(hsFixed limit) {
  if (!Refuse(limit < 0, "bad miter limit", limit)) fMiterLimit = limit;
}

void hsGAttribute::SetMinWidth(hsFixed width) {
  if (!Refuse(width < 0, "bad min width", width)) fMinWidth = width;
}

void hsGAttribute::SetCapType(uint32_t cap) {
  if (!Refuse(cap > kSquareCap, "bad capType", int32_t(cap))) fCapType = uint8_t(cap);
}

void hsGAttribute::SetJoinType(uint32_t join) {
  if (!Refuse(join > kBevelJoin, "bad joinType", int32_t(join))) fJoinType = uint8_t(join);
}

uint32_t hsGAttribute::GetCapJoinStyle() const {
  const uint32_t cap = fCapType == kRoundCap ? 4 : fCapType == kSquareCap ? 8 : 0;
  return cap | fJoinType;  // 1 round, 2 bevel, as the types are numbered
}

void hsGAttribute::SetCapJoin(uint32_t style) {
  fCapType = style & 4 ? kRoundCap : style & 8 ? kSquareCap : kButtCap;
  fJoinType = style & 1 ? kRoundJoin : style & 2 ? kBevelJoin : kMiterJoin;
}

hsFixed hsGAttribute::GetStrokeWidth(const hsMatrix* matrix) const {
  if (fMinWidth == 0 || fFrameSize == 0 || !matrix) return fFrameSize;
  // Of the unit vectors, by the linear part: perspective, which has no one scale, plays no part.
  const auto& map = matrix->fMap;
  const hsFixed length = std::min(hsMagnitude(map[0][0], map[1][0]), hsMagnitude(map[0][1], map[1][1]));
  const bool tooThin = hsFixMul(length, fFrameSize) < fMinWidth;
  return tooThin && length >= kShortestLength ? hsFixDiv(fMinWidth, length) : fFrameSize;
}

void hsGAttribute::SetTextSize(hsFixed size) {
  if (size == fTextSize || Refuse(size < 1, "bad text size", size)) return;
  fTextSize = size;
  DropStrike();
  fSimpleDirty = true;
}

void hsGAttribute::SetTextEncoding(uint32_t encoding) {
  if (!Refuse(encoding > kUTF16, "bad text encoding", int32_t(encoding))) fTextEncoding = uint8_t(encoding);
}

void hsGAttribute::SetFontID(uint32_t font) {
  if (font == fFontID) return;
  fFontID = font;
  fResolvedFontID = 0;
  DropStrike();
  fSimpleDirty = true;
}

bool hsGAttribute::GetTextFace(hsGTextFace* out) const { return CopyOut(fTextFace, out); }

void hsGAttribute::SetTextFace(const hsGTextFace* face) {
  const bool bad =
      face && (face->fSizeRatio < 1 || face->fScaleX < 1 || face->fOutlineWidth < 0 || face->fUnderlineThickness < 0);
  if (Refuse(bad, "bad textface", 0)) return;
  if (Replace(&fTextFace, face)) DropStrike();
}

bool hsGAttribute::GetTextSpacing(hsGTextSpacing* out) const { return CopyOut(fTextSpacing, out); }

void hsGAttribute::SetTextSpacing(const hsGTextSpacing* spacing) {
  const bool bad = spacing && (spacing->fFlags & ~uint32_t{hsGTextSpacing::kIgnoreTrailingSpaces}) != 0;
  if (!Refuse(bad, "bad textspacing", bad ? int32_t(spacing->fFlags) : 0)) Replace(&fTextSpacing, spacing);
}

void hsGAttribute::SetShader(hsGShader* shader) {
  fShader = hsShare(shader);
  fCachedBlitter.reset();
}

void hsGAttribute::SetXferMode(hsGXferMode* mode) {
  fXferMode = hsShare(mode);
  fCachedBlitter.reset();
}

void hsGAttribute::SetMaskFilter(hsGMaskFilter* filter) {
  fMaskFilter = hsShare(filter);
  DropStrike();
}

void hsGAttribute::SetPathEffect(hsGPathEffect* effect) {
  fPathEffect = hsShare(effect);
  DropStrike();
}

void hsGAttribute::SetRasterizer(hsGRasterizer* rasterizer) {
  fRasterizer = hsShare(rasterizer);
  DropStrike();
}

void hsGAttribute::SetLayerFilter(hsGLayerFilter* filter) {
  fLayerFilter = hsShare(filter);
  DropStrike();
}

hsGBlitter* hsGAttribute::GetBlitter(const hsGBitmap& bitmap, int32_t maskType, const hsMatrix& matrix) {
  if (fShader) fShader->SetContext(bitmap, *this, matrix);
  if (!fCachedBlitter || !fCachedBlitter->Reuse(bitmap, *this, maskType)) {
    fCachedBlitter.reset();
    fCachedBlitter = hsAdopt(hsGBlitter::Choose(bitmap, *this, maskType));
  }
  return hsShare(fCachedBlitter.get()).release();
}
