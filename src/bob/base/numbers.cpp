#include "bob/base/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
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

#ifdef __cpp_lib_to_chars

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

// What stands at the beginning of the text; 0 for no number. A hexadecimal one comes without its 0x.
double parseUnsigned(std::string_view text, bool hex) {
  double value = 0;
  const auto format = hex ? std::chars_format::hex : std::chars_format::general;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, format);
  if (error == std::errc::result_out_of_range) value = outOfRange(text.substr(0, size_t(end - text.data())), hex);
  return value;
}

char* formatGeneral(char* begin, char* end, double number) {
  return std::to_chars(begin, end, number, std::chars_format::general, 6).ptr;
}

#else  // a library that lacks these; where it is used, no program changes the locale

double parseUnsigned(std::string_view text, bool hex) {
  if (text.empty() || text.front() == '+' || bobIsSpace(text.front())) return 0;  // strtod would skip it
  return std::strtod(((hex ? "0x" : "") + std::string(text)).c_str(), nullptr);
}

char* formatGeneral(char* begin, char* end, double number) {
  return begin + std::snprintf(begin, size_t(end - begin), "%.6g", number);
}

#endif

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
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') &&
                   (bobDigitOf(text[2], 16) >= 0 || text[2] == '.');
  if (hex) text.remove_prefix(2);
  const double value = parseUnsigned(text, hex);
  return negative ? -value : value;
}

std::string bobFormatFloat(double number) {
  char buffer[64];
  if (std::isnan(number)) number = std::fabs(number);
  std::string text(buffer, formatGeneral(buffer, buffer + sizeof buffer, number));
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
