// Everything known of one font at one size, transformation and style: glyph records, images and outlines.
//
// A strike is found by its descriptor. In use it has a count of 2 or more and is outside the cache; released, it
// goes into the cache with a count of 1, where a purge may delete it. Two codes that share a low byte replace each
// other out of an 8-bit strike.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "gfx/foundation/hschunkallocator.h"
#include "gfx/text/hsgglyph.h"
#include "gfx/text/hsgscalercontext.h"

class hsPath;

class hsGStrike {
 public:
  // The caller holds a reference. Release returns one; Ref and UnRef are for hsRef. "refcount too small".
  static hsGStrike* FindOrCreate(const hsDescriptor* desc);
  void Ref() { ++fRefCnt; }
  void UnRef() { Release(); }
  void Release();

  // A filled record, good until the next lookup. "Cache is not 8bit", "cache is not 16bit".
  hsGGlyph* GetGlyph8(uint8_t code);
  hsGGlyph* GetGlyph16(uint16_t code);
  hsGGlyph* GetGlyph(uint16_t code) { return fIs16Bit ? GetGlyph16(code) : Get8(code); }
  // Copies of filled records.
  void FillGlyphs(uint32_t count, const uint16_t codes[], hsGGlyph out[]);
  // The image of a record or of a copy, which then has it too; null if it can't be had. "glyph is uninitialized",
  // "uninitialized glyphID".
  const uint8_t* GetImage(hsGGlyph* glyph);
  // Some rows of the image alone, which are not kept. False also where images are made whole only.
  bool GetRows(const hsGGlyph& glyph, int first, int count, uint8_t* buffer) {
    return Context().GetRows(glyph, first, count, buffer);
  }
  const hsPath* GetPath(const hsGGlyph* glyph);
  void KernGlyphs(uint32_t count, const uint16_t chars[], hsGGlyph glyphs[], hsPoint positions[]) {
    Context().KernGlyphs(count, chars, glyphs, positions);
  }
  // Frees the images, for a strike in use that could get no more.
  void Purge();

  bool Is16Bit() const { return fIs16Bit; }
  bool DoesKerning() const { return fDoesKerning; }
  uint8_t MaskType() const { return fMaskType; }
  uint8_t Encoding() const { return fEncoding; }
  const hsDescriptor* Desc() const { return fDesc.get(); }
  const hsPoint& Ascent() const { return fAscent; }
  const hsPoint& Descent() const { return fDescent; }
  const hsPoint& Baseline() const { return fBaseline; }

 private:
  friend class hsGGlyphCache;

  explicit hsGStrike(const hsDescriptor* desc);
  ~hsGStrike();
  hsGStrike(const hsGStrike&) = delete;
  hsGStrike& operator=(const hsGStrike&) = delete;

  hsGScalerContext& Context();
  hsGGlyph Measured(uint16_t code);
  hsGGlyph* Get8(uint16_t code);
  uint8_t* RenderImage(const hsGGlyph& glyph);
  void AddPath(uint16_t code, std::unique_ptr<hsPath> path);

  // Of a 16-bit strike: records in order of their making, found through pages of 256 codes.
  struct GlyphTable {
    static constexpr uint32_t kChunk = 0x20;
    struct Page {
      hsGGlyph* glyphs[256] = {};
    };

    hsGGlyph*& Slot(uint16_t code);
    hsGGlyph* Append(uint16_t code);

    std::vector<std::unique_ptr<hsGGlyph[]>> chunks;
    uint32_t count = 0;
    std::unique_ptr<Page> pages[256];
  };

  int32_t fRefCnt = 1;  // a count of its own: at 1 the strike is in the cache, not gone
  hsGStrike* fNext = nullptr;
  hsGStrike* fPrev = nullptr;
  bool fPurgeOnRelease = false;
  bool fIs16Bit = false;
  std::unique_ptr<hsChunkAllocator> fPool;  // images
  std::unique_ptr<hsGGlyph[]> fGlyphs;      // of an 8-bit strike, by low byte
  std::unique_ptr<GlyphTable> fTable;
  std::unordered_map<uint16_t, std::unique_ptr<hsPath>> fPaths;
  std::unique_ptr<hsGScalerContext> fContext;  // null after a purge, until it is needed
  hsPoint fAscent{}, fDescent{}, fBaseline{};
  const std::unique_ptr<hsDescriptor, void (*)(hsDescriptor*)> fDesc;
  bool fDoesKerning = false;
  uint8_t fMaskType = 0;
  uint8_t fEncoding = 0;
};
