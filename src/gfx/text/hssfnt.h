// The few sfnt tables that the library reads by itself: directory, names, character maps.
//
// All numbers are big-endian. Tables come as bytes of any length; what a table says beyond its end counts as absent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "gfx/foundation/hsbytes.h"

using hsSfntBytes = std::span<const uint8_t>;

// A number at an offset; 0 where it reaches beyond the end.
constexpr uint32_t hsSfntU8(hsSfntBytes bytes, uint64_t offset) {
  return offset < bytes.size() ? bytes[size_t(offset)] : 0;
}
constexpr uint32_t hsSfntU16(hsSfntBytes bytes, uint64_t offset) {
  if (offset + 2 > bytes.size()) return 0;
  return hsBig16(&bytes[size_t(offset)]);
}
constexpr uint32_t hsSfntU32(hsSfntBytes bytes, uint64_t offset) {
  if (offset + 4 > bytes.size()) return 0;
  return hsBig32(&bytes[size_t(offset)]);
}

namespace hsSfnt {

inline constexpr uint16_t kAny = 0xFFFF;  // matches every value of a filter
inline constexpr uint32_t kDirectoryHeader = 12, kDirectoryEntry = 16;

// The offset of the first table with the tag, its length if asked for, or 0.
uint32_t FindTable(hsSfntBytes directory, uint32_t tag, uint32_t* length = nullptr);
// Where the table with the largest offset ends.
uint32_t DataSize(hsSfntBytes directory);

// The length of the first name that passes, and its index; 0 without one. Script 1 also takes script 2.
uint32_t FindName(hsSfntBytes table, uint16_t nameID, uint16_t platform, uint16_t script, uint16_t language,
                  uint32_t* index);
// Copies a name, if a buffer is given, and returns its length. "bad name index".
uint32_t GetNameAt(hsSfntBytes table, uint32_t index, void* buffer);
// Whether a name that passes has exactly these bytes.
bool CompareName(hsSfntBytes table, uint16_t nameID, uint16_t platform, uint16_t script, uint16_t language,
                 uint32_t length, const void* text);

// The offset of the first map that passes, and its script if asked for, or 0.
uint32_t FindCmap(hsSfntBytes table, uint16_t platform, uint16_t script, uint16_t* foundScript = nullptr);
// The glyphs of length bytes of text, single bytes or 16-bit characters. "nil param", "odd length for unicode text".
// A map of another format than 0, 2, 4 and 6 writes nothing.
void MapChars(hsSfntBytes subtable, uint32_t length, const void* text, bool isUnicode, uint16_t out[]);

}  // namespace hsSfnt
