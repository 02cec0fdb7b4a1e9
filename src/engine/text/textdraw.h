// Drawing a string on the screen in a style.
#pragma once

#include <cstdint>

#include "engine/text/textstyle.h"

// The style that text on an engine's screen is drawn in.
struct TextPen {
  TextStyle style;
};

TextPen& currentTextPen();  // of the engine that is current on this thread

// Makes the style current for textDraw. Its horizontal scale of exactly 1.0 leaves that of the style before in force.
void textApplyStyle(const TextStyle& style);

// Draws with the current style, y being the baseline, and flushes the display.
void textDraw(const char* text, uint32_t length, int32_t x, int32_t y);

// Applies the style and draws with the baseline at top + ascent.
void textDrawAt(const TextStyle& style, const char* text, uint32_t length, int32_t x, int32_t top);
