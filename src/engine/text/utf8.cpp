#include "engine/text/utf8.h"

int32_t utf8Decode(const uint8_t* bytes, size_t available, int* length) {
  const auto continues = [&](size_t i) { return (bytes[i] & 0xC0) == 0x80; };
  if (available < 1) return -1;
  const uint8_t first = bytes[0];
  if (first < 0x80) {
    *length = 1;
    return first;
  }
  if ((first & 0xE0) == 0xC0 && available >= 2 && continues(1)) {
    *length = 2;
    return (first & 0x1F) << 6 | (bytes[1] & 0x3F);
  }
  if ((first & 0xF0) == 0xE0 && available >= 3 && continues(1) && continues(2)) {
    *length = 3;
    return (first & 0x0F) << 12 | (bytes[1] & 0x3F) << 6 | (bytes[2] & 0x3F);
  }
  return -1;
}
