// Breaking text into lines of a width: greedy, at white space, and inside a word only where it is too wide by itself.
//
// Pieces are bytes: where a word has to be broken, the break may fall inside a character, and what follows that break
// no longer decodes and doesn't show.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/text/textstyle.h"

struct TextLine {
  std::string_view text;  // looks into the text that was broken
  int32_t width;          // pixels
  bool operator==(const TextLine&) const = default;
};

// At most 20 lines, from the first 100 words; `width` in pixels. In a width too small for any character all 20 lines
// are empty.
std::vector<TextLine> breakLines(const TextStyle& style, std::string_view text, int32_t width);
