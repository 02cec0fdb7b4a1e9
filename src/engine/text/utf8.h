// UTF-8 as pages may have it.
#pragma once

#include "gfx/text/hsutf8.h"

// A code point of one to three bytes, and how many; -1 if there is none.
inline int32_t utf8Decode(const uint8_t* bytes, size_t available, int* length) {
  return DecodeUTF8(bytes, available, length);
}
