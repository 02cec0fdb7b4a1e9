// A blitter that makes a region of the spans it is given.
//
// It takes them only in order: ascending rows, ascending within a row. Rows that are alike become one band.
#pragma once

#include <memory>

#include "gfx/vector/hsgblitter.h"

class hsRegionBuilder : public hsGBlitter {
 public:
  hsRegionBuilder();

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  // The runs so far, for hsRegion::SetRuns; they stay the builder's. count is 1 when there was no span. Last call.
  const int16_t* Finish(int32_t* count);

 private:
  void EnsureRoom(int32_t elements);
  void EndRow(bool canCoalesce);

  std::unique_ptr<int16_t[]> fStorage;
  int32_t fCapacity;             // elements
  int16_t* fBand = nullptr;      // slot of the current band's bottom
  int16_t* fPrevBand = nullptr;  // of the band that this one may prove to equal
  int16_t* fCursor = nullptr;    // null before the first span
  int16_t* fStop;                // the storage's end
  int32_t fLastY = 0;
};
