#include "bob/base/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "bob/base/ascii.h"

namespace {

constexpr size_t kIntegerText = 99;  // of a buffer of 100

void skipSpace(std::string_view& text) {
  while (!text.empty() && bobIsSpace(text.front())) text.remove_prefix(1);
}

// Removes a sign; true if it was a minus.
bool takeSign(std::string_view& text) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  return negative;
}

// from_chars leaves the value alone when the number is out of range: it is then infinite or 0, whichever side of 1
// it lies. That takes the first digit's place and the exponent together: a long fraction can have a large exponent.
double outOfRange(std::string_view number, bool hex) {
  const size_t e = std::min(number.find_first_of(hex ? "pP" : "eE"), number.size());
  int64_t exponent = 0;
  bool negative = false;
  for (char c : number.substr(std::min(e + 1, number.size()))) {
    if (bobIsDigit(c)) exponent = std::min<int64_t>(exponent * 10 + c - '0', 1 << 30);
    negative = negative || c == '-';
  }
  const size_t first = number.find_first_not_of("0.");
  const size_t point = std::min(number.substr(0, e).find('.'), e);
  const int64_t place = int64_t(point) - int64_t(first);
  return place * (hex ? 4 : 1) + (negative ? -exponent : exponent) > 0 ? HUGE_VAL : 0.0;
}

// Flags, width and precision of one conversion, each number cut to what the buffer can show.
size_t readConversion(std::string_view text, std::string& spec) {
  size_t i = 0;
  while (i < text.size() && std::string_view("-+ #0").find(text[i]) != std::string_view::npos) {
    if (spec.find(text[i]) == std::string::npos) spec += text[i];
    ++i;
  }
  const auto number = [&] {
    int value = 0;
    for (; i < text.size() && bobIsDigit(text[i]); ++i) value = std::min(value * 10 + text[i] - '0', 100);
    spec += std::to_string(value);
  };
  if (i < text.size() && bobIsDigit(text[i])) number();
  if (i < text.size() && text[i] == '.') spec += text[i++], number();
  std::string halves;
  for (; i < text.size() && (text[i] == 'l' || text[i] == 'h'); ++i)
    if (text[i] == 'h' && halves.size() < 2) halves += 'h';  // a long has 32 bits as well
  if (i < text.size() && text[i] != 'c') spec += halves;
  return i;
}

}  // namespace

int32_t bobParseInteger(std::string_view text) {
  skipSpace(text);
  const bool negative = takeSign(text);
  const uint64_t limit = uint64_t(std::numeric_limits<int64_t>::max()) + negative;
  uint64_t value = 0;
  for (; !text.empty() && bobIsDigit(text.front()); text.remove_prefix(1)) {
    const uint64_t digit = uint64_t(text.front() - '0');
    value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
  }
  return int32_t(uint32_t(negative ? 0 - value : value));
}

double bobParseFloat(std::string_view text) {
  skipSpace(text);
  const bool negative = takeSign(text);
  if (!text.empty() && text.front() == '-') return 0;  // from_chars would take a second sign
  std::chars_format format = std::chars_format::general;
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') &&
                   (bobDigitOf(text[2], 16) >= 0 || text[2] == '.');
  if (hex) {
    text.remove_prefix(2);
    format = std::chars_format::hex;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, format);
  if (error == std::errc::result_out_of_range) value = outOfRange(text.substr(0, size_t(end - text.data())), hex);
  return negative ? -value : value;
}

std::string bobFormatFloat(double number) {
  char buffer[64];
  if (std::isnan(number)) number = std::fabs(number);
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, 6).ptr;
  std::string text(buffer, end);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

std::string bobFormatInteger(std::string_view format, int32_t number) {
  std::string out;
  while (!format.empty() && out.size() < kIntegerText) {
    if (format.front() != '%') {
      out += format.front();
      format.remove_prefix(1);
      continue;
    }
    std::string spec = "%";
    const size_t length = 1 + readConversion(format.substr(1), spec);
    const char conversion = length < format.size() ? format[length] : 0;
    if (conversion == '%') {
      out += '%';
    } else if (conversion && std::string_view("diuoxXc").find(conversion) != std::string_view::npos) {
      char buffer[256];
      spec += conversion;
      const int written = std::snprintf(buffer, sizeof buffer, spec.c_str(), number);
      out.append(buffer, size_t(std::max(written, 0)));
    } else {
      out.append(format.substr(0, length));
      format.remove_prefix(length);
      continue;
    }
    format.remove_prefix(length + 1);
  }
  return out.substr(0, std::min(out.find('\0'), kIntegerText));
}

int32_t bobTruncate(double number) {
  return number > -2147483649.0 && number < 2147483648.0 ? int32_t(number) : std::numeric_limits<int32_t>::min();
}
