#include "kit/utf8.h"

#include <algorithm>
#include <cstdint>

#include "kit/errors.h"

namespace {

// Bytes of the letter that begins there; 0 for none. No longer form than needed, no surrogates, nothing beyond 10FFFF.
size_t letterSize(std::string_view text) {
  const auto byte = [&](size_t i) { return i < text.size() ? uint8_t(text[i]) : uint8_t(0); };
  const uint8_t first = byte(0);
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const uint8_t least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const uint8_t most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  if (byte(1) < least || byte(1) > most) return 0;
  const size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  for (size_t i = 2; i < size; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  return size;
}

}  // namespace

size_t firstBadUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    const size_t size = letterSize(text.substr(at));
    if (size == 0) return at;
    at += size;
  }
  return std::string_view::npos;
}

int lineOfBadUtf8(std::string_view text) {
  return int(std::count(text.begin(), text.begin() + long(firstBadUtf8(text)), '\n')) + 1;
}

void requireUtf8(const std::string& file, std::string_view text) {
  if (firstBadUtf8(text) != std::string_view::npos) throw KitError(file, lineOfBadUtf8(text), kIsNoUtf8);
}
