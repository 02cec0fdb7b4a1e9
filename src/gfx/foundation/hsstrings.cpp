#include "gfx/foundation/hsstrings.h"

#include <charconv>

#include "gfx/foundation/hsdebug.h"

char* hsFixedToString(hsFixed value, char buffer[kFixedStringSize]) {
  const uint32_t magnitude = hsMagnitude32(value);
  char* to = buffer;
  if (value < 0) *to++ = '-';
  to = std::to_chars(to, buffer + kFixedStringSize, magnitude >> 16).ptr;
  if (const uint32_t fraction = magnitude & 0xFFFF; fraction != 0) {
    *to++ = '.';
    uint32_t tenThousandths = fraction * 10000 >> 16;
    hsAssert(tenThousandths <= 9999, "bad nt");
    for (; tenThousandths != 0; tenThousandths = tenThousandths * 10 % 10000) *to++ = char('0' + tenThousandths / 1000);
  }
  *to++ = 0;
  return to;
}

const char* hsFindSubstring(const char* string, const char* pattern) {
  if (!hsAssert(string && pattern, "nil strs")) return nullptr;
  const char* begin = string;
  const char* p = pattern;
  for (; *p && *string; ++string) {
    if (*string != *p) p = pattern;  // and this character may begin a match
    if (p == pattern) begin = string;
    if (*string == *p) ++p;
  }
  return *p ? nullptr : begin;
}
