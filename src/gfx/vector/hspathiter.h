// Reads a path segment by segment.
//
// Each segment comes with its start point, so a line has two points and a curve four. A contour that is closed, or any
// contour when closing is forced, gets its missing last line from the iterator: it comes as a line before the close
// verb, the next move or the end. Not for use over a change of the path.
#pragma once

#include "gfx/vector/hspath.h"

class hsPathIter {
 public:
  hsPathIter() = default;
  hsPathIter(const hsPath& path, bool forceClose) { Reset(&path, forceClose); }
  void Reset(const hsPath* path, bool forceClose);

  // The next verb, its points in pts (space for 4, may be null); kDoneVerb at the end.
  hsPath::Verb Next(hsPoint pts[4]);
  // Also before the first Next.
  bool IsDone() const { return !fPath || fLastVerb == hsPath::kDoneVerb; }

  // Skips to the next move, and copies the contour from there into dst unless that is null. False without one.
  bool NextContour(hsPath* dst);
  // Whether the contour ahead ends in a close.
  bool IsClosedContour() const;

 private:
  template <int32_t count>
  void Segment(hsPoint pts[]);
  bool AutoClose(hsPoint pts[2], bool isCloseVerb);

  const hsPath* fPath = nullptr;
  const hsPoint* fPoint = nullptr;  // the cursors
  const uint8_t* fVerb = nullptr;
  const uint8_t* fVerbEnd = nullptr;
  hsPoint fMoveTo{0, 0};  // start of the contour
  hsPoint fLastPt{0, 0};  // end of the segment before
  bool fForceClose = false;
  hsPath::Verb fLastVerb = hsPath::kDoneVerb;
};
