// Turns the spans of a shape drawn four times too large into rows of coverage.
//
// A pixel is 4 by 4 samples. A sample adds 16 to its pixel's byte, but on the first of the four sample rows a span
// takes one off each pixel that it begins in or fills, so that 63 + 64 + 64 + 64 makes 255 and no byte can overflow.
#pragma once

#include <memory>

#include "gfx/foundation/hsrect.h"
#include "gfx/vector/hsgblitter.h"

class hsRegion;

class hsSuperBlitter : public hsGBlitter {
 public:
  static constexpr int32_t kShift = 2;  // log2 of the samples to a pixel, either way

  // Rows of bounds (pixels) go to realBlitter: whole when clip is null, otherwise the pieces that lie in clip.
  hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter);

  // In samples, ascending and without overlap.
  void BlitH(int32_t y, int32_t x, int32_t width) override;
  // Passes on the last row; the end of every shape.
  void Finish();

 private:
  static constexpr int32_t kNoRow = 0x7FFFFFFF;
  static constexpr int32_t kInlineWords = 129;  // a row of 1024 pixels

  struct Run {
    int32_t begin, end;  // words of the row
  };

  const uint8_t* Bytes() const { return reinterpret_cast<const uint8_t*>(fCoverage); }
  void AddSpan(int32_t subRow, int32_t x, int32_t width);
  void Add(int32_t word, uint64_t by);
  void AddRun(Run run, uint64_t by);
  void AddWords(Run run, uint64_t by);
  void Flush(bool clear);

  const hsIntRect fBounds;
  const hsRegion* const fClip;
  hsGBlitter* const fRealBlitter;
  const hsGCoverageScope fCovered;
  const int32_t fWordCount;       // of coverage in a row, eight pixels each
  uint64_t* fCoverage = fInline;  // the row, a byte a pixel, and a spare word
  bool fDirty = false;
  int32_t fCurrY = kNoRow;  // pixel row in progress
  const int32_t fSuperLeft, fSuperTop;
  Run fHeld{0, 0};       // words still to be added to
  uint64_t fHeldBy = 0;  // and what to add to each
  std::unique_ptr<uint64_t[]> fMore;
  uint64_t fInline[kInlineWords];
};
