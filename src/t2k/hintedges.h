// The edges of an outline that run along an axis, found in font units.
//
// Words are those of horizontal edges, whose place is a height. For vertical ones read right for top and left for
// bottom, and the other way about for left and right.
#pragma once

#include <vector>

#include "t2k/glyph.h"

enum HintAxis { kHintX, kHintY };  // the axis that places count along: edges run across it

// Pieces of outline at about one height, with ink on the same side.
struct HintEdge {
  int low, high;     // heights of the pieces, within a hundredth of an em
  int left, right;   // between which they lie
  bool isTop;        // ink lies below
  bool isRound;      // the extremum of a curve
  int partner = -1;  // the edge across the stem, as an index; -1 if there is none
};

// A glyph with more edges is an ornament, and left as it is.
inline constexpr size_t kMaxHintEdges = 256;

// From the lowest to the highest, stems paired; none if there are too many.
std::vector<HintEdge> FindHintEdges(const GlyphClass& glyph, HintAxis axis, int upem);
