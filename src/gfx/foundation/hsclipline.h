// Bringing long lines near a rectangle before they are walked.
//
// The clip is rough: an end may come to lie 1/256 outside, and a line that misses a corner may count as visible. It
// only has to keep coordinates small; whoever draws the line still cuts its pixels.
#pragma once

#include "gfx/foundation/hsrect.h"

class hsClipLine {
 public:
  // Moves point along the line towards other until it lies in rect; false when it doesn't get there.
  static bool ClipEndPoint(const hsPoint& other, const hsRect& rect, hsPoint* point);
  // Clips both ends; true when either could be brought in.
  static bool ClipLine(const hsPoint& p0, const hsPoint& p1, const hsRect& rect, hsPoint out[2]);
  // Where the segments meet, their ends included. Parallel ones don't.
  static bool IntersectLines(const hsPoint a[2], const hsPoint b[2], hsPoint* point);
};
