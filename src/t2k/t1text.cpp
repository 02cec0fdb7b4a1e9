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

  // digits * scale * 65536 * 10^exponent; digits stay below 2^44 and a saturated product needs no more.
  unsigned __int128 product = static_cast<unsigned __int128>(digits) * unsigned(scale) << 16;
  const unsigned __int128 ceiling = static_cast<unsigned __int128>(1) << 110;
  for (; exponent > 0 && product < ceiling; --exponent) product *= 10;
  unsigned __int128 divisor = 1;
  for (; exponent < 0 && divisor < ceiling; ++exponent) divisor *= 10;
  const unsigned __int128 magnitude = (product + divisor / 2) / divisor;
  const auto cut = int64_t(std::min<unsigned __int128>(magnitude, kPosInfinity32));
  *value = int32_t(negative ? -cut : cut);
  return true;
}
