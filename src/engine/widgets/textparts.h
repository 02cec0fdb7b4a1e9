// What the widgets that show text share: styles by name, and where a piece of text goes inside its widget.
#pragma once

#include <optional>

#include "engine/page/widget.h"
#include "engine/text/textstyle.h"

// Copies of the styles that a widget's text takes. Each kind has its own rule for a highlighted widget without the
// second one.
struct TextStylePair {
  std::optional<TextStyle> plain, highlighted;
};

// Those that textStyle and highlightTextStyle name. Nothing for one that is absent or, after logging it, that the page
// doesn't have.
TextStylePair widgetTextStyles(const Widget* widget);

// The left edge of a piece of text, and the top edge of a block, in the box by a widgetAlign number; all in pixels.
// What is larger than the box begins at its corner.
int32_t alignedLeft(const Bounds& box, uint32_t alignment, int32_t width);
int32_t alignedTop(const Bounds& box, uint32_t alignment, int32_t height);
