#include "t2k/t1text.h"

#include "gfx/foundation/hsascii.h"

#include <algorithm>

namespace {

constexpr int64_t kDigitLimit = int64_t{1} << 40;  // digits beyond this change no 16.16 number

void SkipBlanks(T1Text& text) {
  while (!text.AtEnd() && IsBlank(*text.at)) ++text.at;
}

bool TakeSign(T1Text& text) {
  if (text.AtEnd() || (*text.at != '-' && *text.at != '+')) return false;
  return *text.at++ == '-';
}

}  // namespace

uint32_t NumberEndingAt(const uint8_t* begin, const uint8_t* end) {
  const uint8_t* first = end;
  while (first > begin && hsAsciiIsDigit(char(first[-1]))) --first;
  uint64_t value = 0;
  for (; first < end; ++first) value = std::min<uint64_t>(value * 10 + (*first - '0'), 0x7FFFFFFF);
  return uint32_t(value);
}

T1Text FindAfter(const uint8_t* begin, const uint8_t* end, const char* key) {
  const auto* keyBytes = reinterpret_cast<const uint8_t*>(key);
  const size_t length = std::strlen(key);
  const uint8_t* found = std::search(begin, end, keyBytes, keyBytes + length);
  return found == end ? T1Text{nullptr, end} : T1Text{found + length, end};
}

int32_t ReadWhole(T1Text& text) {
  SkipBlanks(text);
  const bool negative = TakeSign(text);
  int64_t value = 0;
  for (; !text.AtEnd() && hsAsciiIsDigit(char(*text.at)); ++text.at) {
    value = std::min<int64_t>(value * 10 + (*text.at - '0'), kPosInfinity32);
  }
  return int32_t(negative ? -value : value);
}

namespace {

// a * 10^exponent as 16.16 to nearest, halves up, cut at what 31 bits hold. a stays below 2^54: of it 22 decimals down
// nothing is left, and no step here needs more than 64 bits.
uint64_t FixedOf(uint64_t a, int64_t exponent) {
  for (; exponent > 0 && a <= kPosInfinity32; --exponent) a *= 10;
  if (exponent < -21) return 0;
  uint64_t divisor = 1;
  int shift = 16;
  for (; exponent < 0; ++exponent, --shift) divisor *= 5;  // and a two of each ten is taken from the shift
  if (shift < 0) divisor <<= -shift;
  uint64_t quotient = a / divisor, rest = a % divisor;
  for (; shift > 0 && quotient <= kPosInfinity32; --shift) {
    rest *= 2;
    quotient = quotient * 2 + (rest >= divisor);
    if (rest >= divisor) rest -= divisor;
  }
  quotient += 2 * rest >= divisor;
  return std::min<uint64_t>(quotient, kPosInfinity32);
}

}  // namespace

bool ReadFixed(T1Text& text, int32_t scale, hsFixed* value) {
  while (!text.AtEnd() && (IsBlank(*text.at) || *text.at == '[')) ++text.at;
  const bool negative = TakeSign(text);
  int64_t digits = 0;
  int64_t exponent = 0;  // of ten
  bool any = false, inFraction = false;
  for (; !text.AtEnd() && (hsAsciiIsDigit(char(*text.at)) || (*text.at == '.' && !inFraction)); ++text.at) {
    if (*text.at == '.') {
      inFraction = true;
      continue;
    }
    any = true;
    if (digits < kDigitLimit) {
      digits = digits * 10 + (*text.at - '0');
      if (inFraction) --exponent;
    } else if (!inFraction) {
      ++exponent;
    }
  }
  if (!any) return false;
  if (!text.AtEnd() && (*text.at == 'e' || *text.at == 'E')) {
    ++text.at;
    exponent += std::clamp(ReadWhole(text), -1000, 1000);
  }

  const auto cut = int32_t(FixedOf(uint64_t(digits) * uint64_t(scale), exponent));
  *value = negative ? -cut : cut;
  return true;
}
