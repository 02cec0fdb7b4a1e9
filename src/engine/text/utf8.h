// UTF-8 as pages may have it: sequences of one to three bytes.
#pragma once

#include <cstddef>
#include <cstdint>

// A code point of one to three bytes, and how many; -1 if there is none.
int32_t utf8Decode(const uint8_t* bytes, size_t available, int* length);
