// Measuring with a paint, and the strike descriptors that it keeps.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsdescriptor.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgtextcontext.h"
#include "gfx/text/hsutf8.h"
#include "gfx/vector/hsgpatheffect.h"
#include "gfx/vector/hspath.h"

namespace {

constexpr uint16_t kPathFlags = hsGAttribute::kLinearText | hsGAttribute::kNoGridFit;  // of text drawn as paths

constexpr int32_t kFixedLengths[] = {4, int32_t(sizeof(hsGScalerRecord))};

int32_t DescriptorSize() { return hsDescriptor::ComputeSize(2, kFixedLengths); }

// An effect on its way into a descriptor; null for none.
struct EffectEntry {
  uint32_t tag;
  const hsGSizedFlattenable* effect;
};

void AddScaler(hsDescriptor* desc) {
  const uint32_t kind = kScaler_Registered;
  std::memcpy(hsDescriptor::Add(desc, kRecord_FontScaler, sizeof kind), &kind, sizeof kind);
}

void AddRecord(hsDescriptor* desc, const hsGScalerRecord& record) {
  std::memcpy(hsDescriptor::Add(desc, kRecord_FontScalerDesc, sizeof record), &record, sizeof record);
}

void ClearTranslation(hsMatrix* matrix) { matrix->fMap[0][2] = matrix->fMap[1][2] = 0; }

}  // namespace

hsGScalerRecord hsGAttribute::PlainRecord() {
  if (fResolvedFontID == 0) fResolvedFontID = hsGFontRegistry::GetFontByID(fFontID)->FontID();
  hsGScalerRecord record{};
  record.fFontID = fResolvedFontID;
  record.fTextSize = fTextSize;
  record.fFlags = uint16_t(fFlags);
  record.fSizeRatio = kFixed1;
  return record;
}

hsDescriptor* hsGAttribute::MakeStrikeDesc(const hsMatrix* matrix, hsPoint* outAdvance, hsPoint* outOffset) {
  if (!hsAssert(outAdvance, "advance required") || !hsAssert(outOffset, "glyphOffset required")) return nullptr;
  *outAdvance = *outOffset = {0, 0};
  const hsMatrix identity;
  if (!matrix) matrix = &identity;
  hsGScalerRecord record = PlainRecord();
  if (fFlags & kTextAsPaths) record.fFlags |= kPathFlags;
  if (fRasterizer || fMaskFilter) record.fFlags |= hsGScalerRecord::kAntiAlias;
  record.fEncoding = fTextEncoding;
  record.fMatrix = *matrix;
  if (fTextFace) {
    hsMatrix face;
    face.SetScale(fTextFace->fScaleX, kFixed1, 0, 0);
    if (fTextFace->fSkewX != 0) face.PreSkew(fTextFace->fSkewX, 0, 0, 0);
    record.fMatrix.SetConcat(*matrix, face);
    record.fSizeRatio = fTextFace->fSizeRatio;
    *outAdvance = {fTextFace->fExtraAdvance, 0};
    *outOffset = {hsFixMulSat(fTextFace->fGlyphOffsetX, fTextSize), hsFixMulSat(fTextFace->fGlyphOffsetY, fTextSize)};
    matrix->MapVectors(1, outAdvance, outAdvance);
    matrix->MapVectors(1, outOffset, outOffset);
    if (fTextFace->fOutlineWidth != 0) {
      record.fOutlineStyle = GetCapJoinStyle();
      record.fOutlineMiter = fMiterLimit;
      record.fOutlineWidth = fTextFace->fOutlineWidth;
    }
  }
  ClearTranslation(&record.fMatrix);

  // Text drawn as paths has a path effect in its outlines and meets it again when they are drawn.
  const EffectEntry effects[] = {
      {kRecord_PathEffect, PathEffect()}, {kRecord_Rasterizer, Rasterizer()}, {kRecord_MaskFilter, MaskFilter()}};
  std::vector<int32_t> lengths(std::begin(kFixedLengths), std::end(kFixedLengths));
  for (const EffectEntry& entry : effects)
    if (entry.effect) lengths.push_back(FlattenEffect(*entry.effect, nullptr));
  hsDescriptor* desc = hsDescriptor::New(hsDescriptor::ComputeSize(int32_t(lengths.size()), lengths.data()));
  AddScaler(desc);
  AddRecord(desc, record);
  for (const EffectEntry& entry : effects)
    if (entry.effect)
      FlattenEffect(*entry.effect, hsDescriptor::Add(desc, entry.tag, FlattenEffect(*entry.effect, nullptr)));
  hsDescriptor::ComputeCheckSum(desc);
  return desc;
}

void hsGAttribute::BuildSimpleStrike() {
  if (!hsAssert(fSimpleDirty, "BuildSimpleStrike called unnecessarily")) return;
  if (!fSimpleDesc) fSimpleDesc = hsDescriptor::New(DescriptorSize());
  hsDescriptor::Init(fSimpleDesc);
  AddScaler(fSimpleDesc);
  AddRecord(fSimpleDesc, PlainRecord());
  hsDescriptor::ComputeCheckSum(fSimpleDesc);
}

const hsDescriptor* hsGAttribute::SimpleStrikeDesc() {
  if (fSimpleDirty) BuildSimpleStrike();
  fSimpleDirty = false;
  return fSimpleDesc;
}

hsGTextContext* hsGAttribute::GetTextContext(const hsMatrix* matrix) {
  const hsMatrix identity;
  if (!matrix) matrix = &identity;
  if (!fStrikeDesc || fStrikeMatrix != *matrix) {
    DropStrike();
    fStrikeDesc = MakeStrikeDesc(matrix, &fAdvanceScale, &fOriginOffset);
    fStrikeMatrix = *matrix;
  }
  if (!fTextFace || fTextFace->fUnderlineThickness == 0)
    return new hsGTextContext(*this, fStrikeDesc, fAdvanceScale, fOriginOffset, nullptr);
  const hsGUnderline underline = {hsFixMulSat(fTextSize, fTextFace->fUnderlinePosition),
                                  hsFixMulSat(fTextSize, fTextFace->fUnderlineThickness)};
  return new hsGTextContext(*this, fStrikeDesc, fAdvanceScale, fOriginOffset, &underline);
}

hsFixed hsGAttribute::MeasureText(uint32_t length, const void* text, hsPoint* outLeft, hsPoint* outRight) {
  const auto context = hsAdopt(GetTextContext(nullptr));
  context->GetMetrics(outLeft, outRight, nullptr);
  if (length == 0 || context->SetText(length, text) == 0) return 0;
  return context->GetPositions(nullptr, fTextSpacing.get())[context->Count()].fX;
}

uint32_t hsGAttribute::GetTextWidths(uint32_t length, const void* text, hsFixed widths[]) {
  if (length == 0) return 0;
  const auto context = hsAdopt(GetTextContext(nullptr));
  return context->GetWidths(length, text, fTextSpacing.get(), widths, sizeof widths[0]);
}

void hsGAttribute::GetUnderline(uint32_t length, const void* text, hsRect* rect) {
  if (!fTextFace || fTextFace->fUnderlineThickness <= 0) return;
  const hsFixed top = hsFixMulSat(fTextFace->fUnderlinePosition, fTextSize);
  const hsFixed thickness = hsFixMulSat(fTextFace->fUnderlineThickness, fTextSize);
  *rect = {0, top, MeasureText(length, text, nullptr, nullptr), hsWrapAdd(top, thickness)};
}

void hsGAttribute::GetTextPath(uint32_t length, const void* text, hsFixed limit, hsPath* path) {
  if (!hsAssert(length == 0 || text, "inconsistent text param") || length == 0) return;
  const auto context = hsAdopt(GetTextContext(nullptr));
  const uint32_t count = context->SetText(length, text);
  if (count == 0) return;
  hsGGlyph* glyphs;
  const hsPoint* positions = context->GetPositions(&glyphs, fTextSpacing.get());
  const hsFixed alignment = fTextSpacing ? std::max(fTextSpacing->fAlignment, 0) : 0;
  const hsPoint shift = {hsFixMulSat(alignment, positions[count].fX), hsFixMulSat(alignment, positions[count].fY)};
  for (uint32_t i = 0; i < count; ++i) {
    const hsPoint at = positions[i] - shift;
    if (limit >= 0 && at.fX > limit) break;
    hsPath outline;
    outline.Offset(at.fX, at.fY, context->GetPath(&glyphs[i]));
    path->AddPath(outline);
  }
}

uint32_t hsGAttribute::CountText(uint32_t length, const void* text) const {
  switch (fTextEncoding) {
    case kSingleBytes: return length;
    case kUTF8: return CountUTF8(length, static_cast<const uint8_t*>(text), nullptr);
    case kUTF16: return length >> 1;
    default: hsStatusMessage("unknown text-encoding", fTextEncoding); return 0;
  }
}
