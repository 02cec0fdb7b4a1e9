// The text settings of a paint that few texts need.
#pragma once

#include "gfx/foundation/hsfixed.h"

// How glyphs are made. Fractions are of the text size.
struct hsGTextFace {
  hsFixed fSizeRatio = kFixed1;
  hsFixed fSkewX = 0;
  hsFixed fScaleX = kFixed1;
  hsFixed fExtraAdvance = 0;        // added to each glyph's advance, half of it in front of the glyph
  hsFixed fOutlineWidth = 0;        // fraction
  hsFixed fUnderlineThickness = 0;  // fraction; 0 for no underline
  hsFixed fUnderlinePosition = 0;   // fraction, below the baseline
  hsFixed fGlyphOffsetX = 0;        // fraction
  hsFixed fGlyphOffsetY = 0;        // fraction

  constexpr bool operator==(const hsGTextFace&) const = default;
};

// How glyphs are set in a row.
struct hsGTextSpacing {
  enum Flags : uint32_t { kIgnoreTrailingSpaces = 1 };  // when justifying

  uint32_t fFlags = 0;
  hsFixed fAlignment = 0;  // 0 left, 0.5 centred, 1.0 right; negative: justified to the width of that magnitude
  hsFixed fWordExtra = 0;  // after each space
  hsFixed fCharExtra = 0;  // after every other character

  constexpr bool operator==(const hsGTextSpacing&) const = default;
};
