// Characters classed as ASCII, whatever the desktop's locale says.
#pragma once

#include <cstdint>
#include <limits>

constexpr char hsAsciiLower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }
constexpr bool hsAsciiIsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool hsAsciiIsDigit(char c) { return c >= '0' && c <= '9'; }

constexpr bool hsAsciiEqualIgnoringCase(const char* a, const char* b) {
  for (; *a && hsAsciiLower(*a) == hsAsciiLower(*b); ++a, ++b) {
  }
  return *a == *b;
}

// Decimal text to an integer as the C library's 64-bit conversion does it (leading white space, a sign, digits,
// saturating), of which the low 32 bits are kept.
constexpr int32_t hsAsciiToInt(const char* text) {
  while (hsAsciiIsSpace(*text)) ++text;
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  const uint64_t limit = uint64_t(std::numeric_limits<int64_t>::max()) + (negative ? 1 : 0);
  uint64_t value = 0;
  for (; hsAsciiIsDigit(*text); ++text) {
    const uint64_t digit = uint64_t(*text - '0');
    value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
  }
  return int32_t(uint32_t(negative ? 0 - value : value));
}
