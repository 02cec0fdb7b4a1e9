// Small strings.
#pragma once

#include "gfx/foundation/hstypes.h"

// Enough for any value: sign, 5 digits, point, 4 digits, terminator.
constexpr int kFixedStringSize = 12;

// The value in decimal with up to 4 decimals, cut and without trailing zeros. Returns the place after the terminator.
// A fraction too small to show leaves the bare point: 1/65536 over 1 is "1.".
char* hsFixedToString(hsFixed value, char buffer[kFixedStringSize]);

// The address of a match of pattern, or null. It reads string once and never backs up, so a pattern that repeats its
// beginning can be missed: "aab" isn't found in "aaab".
const char* hsFindSubstring(const char* string, const char* pattern);
