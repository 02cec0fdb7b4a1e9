#include "gfx/text/hsutf8.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"

namespace {

constexpr bool IsContinuation(uint8_t byte) { return (byte & 0xC0) == 0x80; }

// The six bits of the next byte; 0 if there is no continuation.
uint32_t Continuation(const uint8_t** p, const uint8_t* end) {
  if (!hsAssert(*p < end && IsContinuation(**p), "bad middle UTF8")) return 0;
  return *(*p)++ & 0x3F;
}

}  // namespace

uint16_t NextUTF8(const uint8_t** p, const uint8_t* end) {
  const uint8_t first = *(*p)++;
  if (first < 0x80) return first;
  if ((first & 0xE0) == 0xC0) return uint16_t((first & 0x1F) << 6 | Continuation(p, end));
  if (!hsAssert((first & 0xF0) == 0xE0, "bad UTF8 byte")) return 0;
  const uint32_t high = Continuation(p, end);
  return uint16_t((first & 0x0F) << 12 | high << 6 | Continuation(p, end));
}

int32_t DecodeUTF8(const uint8_t* bytes, size_t available, int* length) {
  if (available == 0) return -1;
  const size_t size = bytes[0] < 0x80 ? 1 : (bytes[0] & 0xE0) == 0xC0 ? 2 : (bytes[0] & 0xF0) == 0xE0 ? 3 : SIZE_MAX;
  if (size > available || !std::all_of(bytes + 1, bytes + size, IsContinuation)) return -1;
  *length = int(size);
  const uint8_t* at = bytes;
  return NextUTF8(&at, bytes + size);
}

uint32_t CountUTF8(uint32_t length, const uint8_t bytes[], uint16_t out[]) {
  const uint8_t* end = bytes + length;
  uint32_t count = 0;
  for (const uint8_t* p = bytes; p < end; ++p) count += !IsContinuation(*p);
  if (!out) return count;
  // Stray continuations decode to more codes than were counted, and so than out has space for.
  uint32_t written = 0;
  for (const uint8_t* p = bytes; p < end && written < count;) out[written++] = NextUTF8(&p, end);
  return written;
}

uint32_t OffsetOfChar(uint32_t index, uint32_t length, const uint8_t bytes[]) {
  uint32_t offset = 0;
  for (; index > 0 && offset < length; --index) {
    do ++offset;
    while (offset < length && IsContinuation(bytes[offset]));
  }
  return offset;
}

uint32_t PutUTF8(uint16_t code, uint8_t out[]) {
  if (code < 0x80) {
    out[0] = uint8_t(code);
    return 1;
  }
  if (code < 0x800) {
    out[0] = uint8_t(0xC0 | code >> 6);
    out[1] = uint8_t(0x80 | (code & 0x3F));
    return 2;
  }
  out[0] = uint8_t(0xE0 | code >> 12);
  out[1] = uint8_t(0x80 | (code >> 6 & 0x3F));
  out[2] = uint8_t(0x80 | (code & 0x3F));
  return 3;
}

uint32_t PutUTF8Run(uint32_t count, const uint16_t codes[], uint8_t out[]) {
  uint32_t length = 0;
  for (uint32_t i = 0; i < count; ++i) length += PutUTF8(codes[i], out + length);
  return length;
}
