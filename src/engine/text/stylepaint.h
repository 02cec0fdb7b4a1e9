// From a text style to the graphics library's paint, and from any bytes to text that it takes.
//
// Text may be anything: UTF-8 is cut to what decodes, an odd last byte of UTF-16 is dropped.
#pragma once

#include <cstdint>

#include "engine/text/textstyle.h"
#include "gfx/pixel/hsgattribute.h"

// Sets what the style says. A horizontal scale of exactly 1.0 leaves the paint's scale as it was; pages rely on it. The
// style must have a font.
void styleToAttribute(hsGAttribute* attribute, const TextStyle& style);

// How many bytes at the beginning of the text decode.
uint32_t usableLength(uint32_t encoding, const char* text, uint32_t length);

// Of a text that decodes.
uint32_t characterCount(uint32_t encoding, const char* text, uint32_t length);
