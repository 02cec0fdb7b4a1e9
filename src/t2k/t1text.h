// Small readings of a Type 1 font's text: keys, numbers, and the marks before glyph programs.
//
// The text is never parsed as PostScript. A key is found by its bytes and its value read after it, so a key
// that occurs twice counts where it occurs first.
#pragma once

#include <cstdint>
#include <cstring>

#include "gfx/foundation/hsfixed.h"

struct T1Text {
  const uint8_t* at;
  const uint8_t* end;

  bool AtEnd() const { return at >= end; }
};

inline bool IsBlank(uint8_t c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Whether the four bytes at p announce a program: " RD " or " -| ".
inline bool IsProgramMark(const uint8_t* p) {
  return p[0] == ' ' && p[3] == ' ' && ((p[1] == 'R' && p[2] == 'D') || (p[1] == '-' && p[2] == '|'));
}

// The decimal number whose last digit lies just before end; 0 if none does. Cut at what 31 bits hold.
uint32_t NumberEndingAt(const uint8_t* begin, const uint8_t* end);

// The text after the first place in [begin, end) where key occurs; at is null if there is none.
T1Text FindAfter(const uint8_t* begin, const uint8_t* end, const char* key);

// Reads a whole number after blanks; 0 if there is none. Saturates.
int32_t ReadWhole(T1Text& text);
// Reads a number with sign, fraction and exponent after blanks and "[", as 16.16 of its multiple by scale, to nearest;
// false if there is none.
bool ReadFixed(T1Text& text, int32_t scale, hsFixed* value);
