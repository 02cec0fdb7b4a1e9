// UTF-8 of 16-bit codes: sequences of one to three bytes.
//
// Bytes that are no UTF-8 are reported, so callers with text from outside test it first. Reading stays inside the
// bytes in any case.
#pragma once

#include <cstddef>
#include <cstdint>

// The character at *p, which moves past it and never beyond end. "bad middle UTF8", "bad UTF8 byte".
uint16_t NextUTF8(const uint8_t** p, const uint8_t* end);

// The same for text from outside, without a report: the character at bytes and its length, or -1 for what doesn't
// decode.
int32_t DecodeUTF8(const uint8_t* bytes, size_t available, int* length);

// The number of characters in length bytes, which go to out if given.
uint32_t CountUTF8(uint32_t length, const uint8_t bytes[], uint16_t out[]);

// The offset in bytes of the character with that index.
uint32_t OffsetOfChar(uint32_t index, uint32_t length, const uint8_t bytes[]);

// Writes 1 to 3 bytes for a code and returns how many; the run returns the sum.
uint32_t PutUTF8(uint16_t code, uint8_t out[]);
uint32_t PutUTF8Run(uint32_t count, const uint16_t codes[], uint8_t out[]);
