// The horizontal edges of an outline, found in font units.
#pragma once

#include <vector>

#include "t2k/glyph.h"

// Horizontal pieces of outline at about one height, with ink on the same side.
struct HintEdge {
  int low, high;     // heights of the pieces, within a hundredth of an em
  int left, right;   // between which they lie
  bool isTop;        // ink lies below
  bool isRound;      // the extremum of a curve
  int partner = -1;  // the edge across the stem, as an index; -1 if there is none
};

// From the lowest to the highest, stems paired.
std::vector<HintEdge> FindHintEdges(const GlyphClass& glyph, int upem);
