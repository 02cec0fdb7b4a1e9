// What the widgets that show text share: styles by name, and where a piece of text goes inside its widget.
#pragma once

#include <optional>

#include "engine/textstyle.h"
#include "engine/widget.h"

// A copy of the style that the attribute names. Nothing when the attribute is absent, or, with a word in the log, when
// the page has no style of that name.
std::optional<TextStyle> widgetTextStyle(const Widget* widget, const char* attribute);

// The left edge of a piece of text, and the top edge of a block, in the box by a widgetAlign number; all in pixels.
// What is larger than the box begins at its corner.
int32_t alignedLeft(const Bounds& box, uint32_t alignment, int32_t width);
int32_t alignedTop(const Bounds& box, uint32_t alignment, int32_t height);
