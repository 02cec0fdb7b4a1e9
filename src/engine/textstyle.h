// Text styles of a page, the fonts behind them, and the small API by which widgets measure and draw a string.
//
// A style is a plain record that widgets copy; its font is never freed, so a copy may outlive the page. A style whose
// font could not be loaded measures 0 and draws nothing. Text may be anything: UTF-8 is cut to what decodes, an odd
// last byte of UTF-16 is dropped. Applying a style with a horizontal scale of exactly 1.0 leaves the scale of the
// style before in force on the screen; pages rely on it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/pagefile.h"

struct Frame;

// One font file, kept for ever with its bytes, which the scaler reads in place.
struct FontEntry {
  FontEntry* next;
  const char* name;
  uint32_t scalerFont;  // the graphics library's identifier of the font
};

enum TextStyleFlags : uint32_t {
  kTextStyleBackground = 1,
  kTextStyleUnderline = 2,  // carried, never drawn
  kTextStyleAntialias = 4,
  kTextStyleGridfit = 8,
};

struct TextStyle {
  FontEntry* font = nullptr;
  uint32_t styleFlags = 0;
  uint32_t color = 0;          // as the screen's depth wants it
  int32_t horScale = 0x10000;  // 16.16
  int32_t letterExtra = 0;     // 16.16 pixels behind each character but the space
  int32_t spaceExtra = 0;      // 16.16 pixels behind each space
  uint16_t size = 24;          // pixels
  uint16_t encoding = 1;       // 0 single bytes, 1 UTF-8, 2 UTF-16, little-endian
  uint32_t bgColor = 0;
};

struct TextStyleNode {
  char* name = nullptr;  // null for "default"
  TextStyleNode* next = nullptr;
  TextStyle style;
};

// Builds the frame's styles from the table. 0 when memory runs out, with the styles up to there in the frame.
int stylesLoad(Frame* frame, const PageTable& table);
void stylesFree(Frame* frame);

// The first style of that name, or null.
const TextStyle* styleFind(const Frame* frame, const char* name);

// The font of a file; one that was loaded before, by a name equal but for case, is shared. Null when it can't be read.
FontEntry* fontLoad(const char* fileName);

// Makes the style current for textDraw.
void textApplyStyle(const TextStyle& style);

// Pixels. Length is in bytes; ascent may be null and is positive upwards.
void textMeasure(const TextStyle& style, const char* text, uint32_t length, int32_t* width, int32_t* height,
                 int32_t* ascent);

// How many bytes from the text's beginning, fewer than `length`, measure less than `limit` pixels, and their width. The
// most that do; 0, of width 0, when none do. The last of them may begin a character that the next bytes would end.
uint32_t textFit(const TextStyle& style, const char* text, uint32_t length, int32_t limit, int32_t* width);

// Of the style's font and size alone. Either may be null.
void textMetrics(const TextStyle& style, int32_t* ascent, int32_t* descent);

// Draws with the current style, y being the baseline, and flushes the display.
void textDraw(const char* text, uint32_t length, int32_t x, int32_t y);

// Applies the style and draws with the baseline at top + ascent.
void textDrawAt(const TextStyle& style, const char* text, uint32_t length, int32_t x, int32_t top);

// Renders each UTF-8 character off screen, so that its glyph is in the cache.
void textWarm(const TextStyle& style, const char* text, uint32_t bytes);

// A code point of one to three bytes, and how many; -1 if there is none.
int32_t utf8Decode(const uint8_t* bytes, size_t available, int* length);
