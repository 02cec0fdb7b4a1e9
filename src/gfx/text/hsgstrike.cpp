#include "gfx/text/hsgstrike.h"

#include <algorithm>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/text/hsgglyphcache.h"
#include "gfx/vector/hspath.h"

namespace {

constexpr uint32_t kTableSize = 256;
constexpr uint64_t kMostImageBytes = 1 << 26;
constexpr int32_t kFirstChunk = 0x1000, kSmallestChunk = 0x100, kLargestChunk = 0x1000;

std::unique_ptr<hsGScalerContext> NewContext(const hsDescriptor* desc) {
  std::unique_ptr<hsGScalerContext> context(hsGScalerContext::Create(desc));
  hsThrowIfNilParam(context.get());
  return context;
}

// Pixels that the sides of a unit square reach over along an axis; the matrix may scale by any amount.
int64_t Reach(int64_t a, int64_t b) {
  const int64_t low = std::min<int64_t>({0, a, b, a + b}), high = std::max<int64_t>({0, a, b, a + b});
  return ((high + 0xFFFF) >> 16) - (low >> 16);
}

// Space for some images of the strike's glyphs.
int32_t ChunkSize(const hsGScalerRecord& record) {
  const auto& m = record.fMatrix.fMap;
  int64_t size = Reach(m[0][0], m[0][1]) * Reach(m[1][0], m[1][1]) * 8;
  if (!(record.fFlags & hsGScalerRecord::kAntiAlias)) size /= 8;
  return int32_t(std::clamp<int64_t>(size, kSmallestChunk, kLargestChunk));
}

}  // namespace

hsGStrike::hsGStrike(const hsDescriptor* desc)
    : fPool(std::make_unique<hsChunkAllocator>(kFirstChunk)),
      fContext(NewContext(desc)),
      fDesc(hsDescriptor::Copy(desc, nullptr), hsDescriptor::Delete) {
  const hsGScalerRecord& record = fContext->Record();
  fDoesKerning = fContext->DoesKerning();
  fContext->GetFontMetrics(&fAscent, &fDescent, &fBaseline);
  fPool = std::make_unique<hsChunkAllocator>(ChunkSize(record));
  fMaskType = fContext->MaskType();
  fEncoding = uint8_t(record.fEncoding);
  fIs16Bit = fEncoding != 0;
  if (fIs16Bit) {
    fTable = std::make_unique<GlyphTable>();
  } else {
    fGlyphs = std::make_unique<hsGGlyph[]>(kTableSize);
  }
}

hsGStrike::~hsGStrike() = default;

hsGStrike* hsGStrike::FindOrCreate(const hsDescriptor* desc) {
  hsGStrike* strike = hsGGlyphCache::Instance()->Take(desc);
  if (!strike) strike = new hsGStrike(desc);
  strike->Ref();
  return strike;
}

void hsGStrike::Release() {
  if (!hsAssert(fRefCnt >= 2, "refcount too small")) return;
  if (--fRefCnt == 1) hsGGlyphCache::Instance()->Insert(this);
}

// ---- records

hsGGlyph*& hsGStrike::GlyphTable::Slot(uint16_t code) {
  std::unique_ptr<Page>& page = pages[code >> 8];
  if (!page) page = std::make_unique<Page>();
  return page->glyphs[code & 0xFF];
}

hsGGlyph* hsGStrike::GlyphTable::Append(uint16_t code) {
  if (count % kChunk == 0) chunks.push_back(std::make_unique<hsGGlyph[]>(kChunk));
  return Slot(code) = &chunks.back()[count++ % kChunk];
}

hsGScalerContext& hsGStrike::Context() {
  if (!fContext) fContext = NewContext(fDesc.get());
  return *fContext;
}

// Not in its place before it is whole: measuring may find no memory.
hsGGlyph hsGStrike::Measured(uint16_t code) {
  hsGGlyph glyph;
  glyph.fCharCode = code;
  glyph.fGlyphID = hsGGlyph::kFilledByCode;
  Context().Measure(&glyph);
  return glyph;
}

hsGGlyph* hsGStrike::Get8(uint16_t code) {
  hsGGlyph* glyph = &fGlyphs[code & 0xFF];
  if (glyph->fCharCode != code || glyph->fGlyphID == hsGGlyph::kEmpty) *glyph = Measured(code);
  return glyph;
}

hsGGlyph* hsGStrike::GetGlyph8(uint8_t code) { return hsAssert(!fIs16Bit, "Cache is not 8bit") ? Get8(code) : nullptr; }

hsGGlyph* hsGStrike::GetGlyph16(uint16_t code) {
  if (!hsAssert(fIs16Bit, "cache is not 16bit")) return nullptr;
  if (hsGGlyph* known = fTable->Slot(code)) return known;
  const hsGGlyph measured = Measured(code);
  hsGGlyph* glyph = fTable->Append(code);
  *glyph = measured;
  return glyph;
}

void hsGStrike::FillGlyphs(uint32_t count, const uint16_t codes[], hsGGlyph out[]) {
  for (uint32_t i = 0; i < count; ++i) out[i] = *GetGlyph(codes[i]);
}

// A record that is asked about may be a copy; the image belongs to the strike's own.
const uint8_t* hsGStrike::GetImage(hsGGlyph* glyph) {
  if (!hsAssert(glyph->fCharCode != hsGGlyph::kEmpty, "glyph is uninitialized")) return nullptr;
  if (!hsAssert(glyph->fGlyphID != hsGGlyph::kEmpty, "uninitialized glyphID")) return nullptr;
  if (glyph->fWidth == 0 || glyph->fImage) return glyph->fImage;
  hsGGlyph* own = GetGlyph(glyph->fCharCode);
  if (!own->fImage) own->fImage = RenderImage(*own);
  return glyph->fImage = own->fImage;
}

uint8_t* hsGStrike::RenderImage(const hsGGlyph& glyph) {
  const uint64_t size = uint64_t{glyph.fHeight} * glyph.fRowBytes * (fMaskType == kMask_3D ? 3 : 1);
  if (size > kMostImageBytes) return nullptr;
  hsGGlyphCache::NoteImage(uint32_t(size));
  auto* image = static_cast<uint8_t*>(fPool->SoftAllocate(int32_t(size)));
  return image && Context().GetImage(glyph, image) ? image : nullptr;
}

// ---- outlines

const hsPath* hsGStrike::GetPath(const hsGGlyph* glyph) {
  const auto known = fPaths.find(glyph->fCharCode);
  if (known != fPaths.end()) return known->second.get();
  auto path = std::make_unique<hsPath>();
  Context().GetOutline(*glyph, path.get());
  const hsPath* stored = path.get();
  AddPath(glyph->fCharCode, std::move(path));
  return stored;
}

void hsGStrike::AddPath(uint16_t code, std::unique_ptr<hsPath> path) {
  if (!hsAssert(path != nullptr, "path is nil")) return;
  hsAssert(fPaths.emplace(code, std::move(path)).second, "path already present");
}

void hsGStrike::Purge() {
  hsGGlyphCache* cache = hsGGlyphCache::Instance();
  if (cache->Count() > 1) cache->Purge();
  fPool->Reset();
  if (fTable) {
    for (uint32_t i = 0; i < fTable->count; ++i)
      fTable->chunks[i / GlyphTable::kChunk][i % GlyphTable::kChunk].fImage = nullptr;
  } else {
    for (uint32_t i = 0; i < kTableSize; ++i) fGlyphs[i].fImage = nullptr;
  }
  fContext.reset();
}
