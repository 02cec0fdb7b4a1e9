// The formats of a character map that every reader of fonts knows: bytes, segments, a range.
//
// What a map says beyond its end counts as zeros. The font engine and the text floor choose their maps by rules of
// their own and part over one thing: whether a segment's delta is added to a glyph of 0 in the glyph array.
#pragma once

#include "gfx/foundation/hsbytes.h"

struct CharMap {
  const uint8_t* bytes;
  uint64_t size;

  uint16_t WordAt(uint64_t offset) const { return offset + 2 > size ? 0 : hsBig16(bytes + offset); }
};

// The segment of a code. Without a range the glyph is code + delta.
struct CharSegment {
  uint16_t start, delta, range;
  uint64_t rangeAt;  // offset of range in the map, from which it counts
};

// Format 0.
inline uint16_t MapByBytes(const CharMap& map, uint32_t code) {
  return code < 256 && 6 + code < map.size ? map.bytes[6 + code] : 0;
}

// Format 4: the first segment that ends at code or later, walked from the first; false when it starts after code.
inline bool FindSegment(const CharMap& map, uint32_t code, CharSegment* segment) {
  const uint32_t twiceSegments = map.WordAt(6) & ~1u;
  const uint64_t ends = 14, starts = ends + twiceSegments + 2, deltas = starts + twiceSegments,
                 ranges = deltas + twiceSegments;
  for (uint32_t i = 0; i < twiceSegments; i += 2) {
    if (map.WordAt(ends + i) < code) continue;
    *segment = {map.WordAt(starts + i), map.WordAt(deltas + i), map.WordAt(ranges + i), ranges + i};
    return segment->start <= code;
  }
  return false;
}

// Format 6.
inline uint16_t MapByRange(const CharMap& map, uint32_t code) {
  const uint32_t index = code - map.WordAt(6);
  return index < map.WordAt(8) ? map.WordAt(10 + 2 * uint64_t{index}) : 0;
}
