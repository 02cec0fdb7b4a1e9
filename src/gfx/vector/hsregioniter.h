// Walks over a region: by rectangles, by rectangles under a clip, by rows, by rows backwards, and by span.
//
// None owns anything, and none may outlive a change of its region.
#pragma once

#include "gfx/vector/hsregion.h"

// In band order: from the top, and within a band from the left. A band is as high as it is stored.
class hsRegionRectIter {
 public:
  explicit hsRegionRectIter(const hsRegion& region);

  bool IsDone() const { return fDone; }
  const hsIntRect& Rect() const { return fRect; }
  void Next();

 private:
  const int16_t* fRuns;  // the next span or the sentinel; null but for a complex region
  hsIntRect fRect;
  bool fDone;
};

// The same, each rectangle cut by clip and those outside left out.
class hsRegionClipRectIter {
 public:
  hsRegionClipRectIter(const hsRegion& region, const hsIntRect& clip);

  bool IsDone() const { return fDone; }
  const hsIntRect& Rect() const { return fRect; }
  void Next();

 private:
  hsRegionRectIter fIter;
  hsIntRect fClip;
  hsIntRect fRect{0, 0, 0, 0};
  bool fDone = false;
};

// Each span of each row of a complex region (any other fails "nil param"), from the top left.
class hsRegionRowIter {
 public:
  explicit hsRegionRowIter(const hsRegion& region);
  bool Next(int32_t* y, int32_t* left, int32_t* right);  // false at the end

 private:
  const int16_t* fBottom;  // slot of the band's bottom; its spans follow
  const int16_t* fSpan;    // the next span or the sentinel
  int32_t fY;
};

// The same from the bottom right.
class hsRegionReverseRowIter {
 public:
  explicit hsRegionReverseRowIter(const hsRegion& region);
  bool Next(int32_t* y, int32_t* left, int32_t* right);

 private:
  void EnterBand(const int16_t* bottom);

  const int16_t* fFirst;   // the region's runs
  const int16_t* fBottom;  // slot of the band's bottom
  const int16_t* fEnd;     // the band's sentinel
  const int16_t* fSpan;    // after the next span
  int32_t fTop = 0;        // first row of the band
  int32_t fY = 0;
};

// Cuts spans to a complex region. It keeps the band of the last span, so that a run of spans on nearby rows costs
// little.
class hsRegionSpanClipper {
 public:
  explicit hsRegionSpanClipper(const hsRegion* region);

  // Moves to the band of row y; false outside the bounds or when there is nothing in that band.
  bool Seek(int32_t y);
  // As hsRegion::ClipSpan; left < right.
  bool ClipSpan(int32_t y, int32_t* left, int32_t* right);

  bool IsOver(const hsRegion* region) const;

 private:
  const hsRegion* fRegion;
  const int16_t* fTop;  // slots of the band's top and bottom; the top of one band is the bottom of the one before
  const int16_t* fBottom;
};
