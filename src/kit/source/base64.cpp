#include "kit/source/base64.h"

#include <cstdint>

#include "gfx/foundation/hsascii.h"

namespace {
constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
}

std::string base64Encode(std::string_view bytes) {
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? uint8_t(bytes[i + k]) : 0);
    for (size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

std::optional<std::string> base64Decode(std::string_view text) {
  std::string bytes;
  uint32_t group = 0;
  int digits = 0, padding = 0;
  for (char c : text) {
    if (hsAsciiIsSpace(c)) continue;
    const size_t value = c == '=' ? 0 : kDigits.find(c);
    if (value == std::string_view::npos || (padding > 0 && c != '=')) return std::nullopt;
    padding += c == '=';
    group = group << 6 | uint32_t(value);
    if (++digits < 4) continue;
    if (padding > 2) return std::nullopt;
    for (int k = 0; k < 3 - padding; ++k) bytes += char(group >> (16 - 8 * k));
    group = 0;
    digits = 0;
  }
  return digits == 0 ? std::optional(bytes) : std::nullopt;
}
