// How much space a text takes in a style.
#pragma once

#include <cstdint>

#include "engine/text/textstyle.h"

// Pixels. Length is in bytes; ascent may be null and is positive upwards.
void textMeasure(const TextStyle& style, const char* text, uint32_t length, int32_t* width, int32_t* height,
                 int32_t* ascent);

// How many bytes from the text's beginning, fewer than `length`, measure less than `limit` pixels, and their width. The
// most that do; 0, of width 0, when none do. In UTF-16 the last of them may begin a character that the next one ends.
uint32_t textFit(const TextStyle& style, const char* text, uint32_t length, int32_t limit, int32_t* width);

// Of the style's font and size alone. Either may be null.
void textMetrics(const TextStyle& style, int32_t* ascent, int32_t* descent);
