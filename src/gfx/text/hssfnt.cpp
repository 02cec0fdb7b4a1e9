#include "gfx/text/hssfnt.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "t2k/charmap.h"

namespace {

constexpr uint32_t kNameHeader = 6, kNameRecord = 12;

bool Passes(uint32_t value, uint16_t filter) { return filter == hsSfnt::kAny || value == filter; }

struct NameFilter {
  uint16_t nameID, platform, script, language;

  bool Takes(hsSfntBytes table, uint64_t record) const {
    return Passes(hsSfntU16(table, record), platform) && Passes(hsSfntU16(table, record + 2), script) &&
           Passes(hsSfntU16(table, record + 4), language) && Passes(hsSfntU16(table, record + 6), nameID);
  }
};

uint32_t CountNames(hsSfntBytes table) {
  const uint32_t declared = hsSfntU16(table, 2);
  const size_t fitting = table.size() < kNameHeader ? 0 : (table.size() - kNameHeader) / kNameRecord;
  return declared < fitting ? declared : uint32_t(fitting);
}

// The string of a record, cut to the table.
hsSfntBytes NameBytes(hsSfntBytes table, uint32_t index) {
  const uint32_t record = kNameHeader + index * kNameRecord;
  const size_t length = hsSfntU16(table, record + 8);
  const size_t start = hsSfntU16(table, 4) + hsSfntU16(table, record + 10);
  if (start > table.size() || length > table.size() - start) return {};
  return table.subspan(start, length);
}

// take(index) for each record that passes, until it answers true; script 1 goes on to script 2.
template <class Take>
bool EachName(hsSfntBytes table, NameFilter filter, Take&& take) {
  for (;;) {
    for (uint32_t i = 0; i < CountNames(table); ++i)
      if (filter.Takes(table, kNameHeader + i * kNameRecord) && take(i)) return true;
    if (filter.script != 1) return false;
    filter.script = 2;
  }
}

// ---- one character by each format

uint16_t MapHighByte(const CharMap& map, uint32_t code) {
  constexpr uint32_t kKeys = 6, kSubHeaders = 0x206;
  // Key 0, that of single bytes, looks up the low byte whatever the high one is.
  const uint32_t header = kSubHeaders + map.WordAt(kKeys + 2 * (code >> 8));
  const uint32_t index = (code & 0xFF) - map.WordAt(header);
  if (index >= map.WordAt(header + 2)) return 0;
  const uint32_t glyph = map.WordAt(header + 6 + map.WordAt(header + 6) + 2 * index);
  return glyph == 0 ? 0 : uint16_t(glyph + map.WordAt(header + 4));
}

uint16_t MapSegments(const CharMap& map, uint32_t code) {
  CharSegment segment;
  if (!FindSegment(map, code, &segment)) return 0;
  if (segment.range == 0) return uint16_t(code + segment.delta);
  const uint16_t glyph = map.WordAt(segment.rangeAt + 2 * ((segment.range >> 1) + code - segment.start));
  return glyph == 0 ? 0 : uint16_t(glyph + segment.delta);
}

}  // namespace

uint32_t hsSfnt::FindTable(hsSfntBytes directory, uint32_t tag, uint32_t* length) {
  const uint32_t count = hsSfntU16(directory, 4);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t entry = kDirectoryHeader + i * kDirectoryEntry;
    if (entry + kDirectoryEntry > directory.size()) break;
    if (hsSfntU32(directory, entry) != tag) continue;
    if (length) *length = hsSfntU32(directory, entry + 12);
    return hsSfntU32(directory, entry + 8);
  }
  if (length) *length = 0;
  return 0;
}

uint32_t hsSfnt::DataSize(hsSfntBytes directory) {
  uint32_t largest = 0, length = 0;
  const uint32_t count = hsSfntU16(directory, 4);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t entry = kDirectoryHeader + i * kDirectoryEntry;
    if (hsSfntU32(directory, entry + 8) < largest) continue;
    largest = hsSfntU32(directory, entry + 8);
    length = hsSfntU32(directory, entry + 12);
  }
  return largest + length;
}

uint32_t hsSfnt::FindName(hsSfntBytes table, uint16_t nameID, uint16_t platform, uint16_t script, uint16_t language,
                          uint32_t* index) {
  uint32_t length = 0;
  EachName(table, {nameID, platform, script, language}, [&](uint32_t i) {
    length = uint32_t(NameBytes(table, i).size());
    if (index) *index = i;
    return true;
  });
  return length;
}

uint32_t hsSfnt::GetNameAt(hsSfntBytes table, uint32_t index, void* buffer) {
  if (table.empty() || !hsAssert(index < CountNames(table), "bad name index")) return 0;
  const hsSfntBytes name = NameBytes(table, index);
  if (buffer && !name.empty()) std::memcpy(buffer, name.data(), name.size());
  return uint32_t(name.size());
}

bool hsSfnt::CompareName(hsSfntBytes table, uint16_t nameID, uint16_t platform, uint16_t script, uint16_t language,
                         uint32_t length, const void* text) {
  return EachName(table, {nameID, platform, script, language}, [&](uint32_t i) {
    const hsSfntBytes name = NameBytes(table, i);
    return name.size() == length && std::memcmp(name.data(), text, length) == 0;
  });
}

uint32_t hsSfnt::FindCmap(hsSfntBytes table, uint16_t platform, uint16_t script, uint16_t* foundScript) {
  const uint32_t count = hsSfntU16(table, 2);
  for (uint32_t i = 0; i < count && 4 + 8 * (uint64_t{i} + 1) <= table.size(); ++i) {
    const uint32_t record = 4 + 8 * i;
    if (hsSfntU16(table, record) != platform || !Passes(hsSfntU16(table, record + 2), script)) continue;
    if (foundScript) *foundScript = uint16_t(hsSfntU16(table, record + 2));
    return hsSfntU32(table, record + 4);
  }
  return 0;
}

void hsSfnt::MapChars(hsSfntBytes subtable, uint32_t length, const void* text, bool isUnicode, uint16_t out[]) {
  if (!hsAssert(subtable.data() != nullptr, "nil param")) return;
  if (isUnicode && !hsAssert(length % 2 == 0, "odd length for unicode text")) return;
  const uint32_t format = hsSfntU16(subtable, 0);
  if (format == 0 && !hsAssert(hsSfntU16(subtable, 2) == 0x106, "bad length")) return;
  uint16_t (*map)(const CharMap&, uint32_t) = nullptr;
  switch (format) {
    case 0: map = MapByBytes; break;
    case 2: map = isUnicode ? MapHighByte : nullptr; break;
    case 4: map = MapSegments; break;
    case 6: map = MapByRange; break;
  }
  if (!map) return;
  const uint8_t* bytes = static_cast<const uint8_t*>(text);
  for (uint32_t i = 0; i < length / (isUnicode ? 2 : 1); ++i) {
    uint16_t code = bytes[i];
    if (isUnicode) std::memcpy(&code, bytes + 2 * i, 2);
    out[i] = map({subtable.data(), subtable.size()}, code);
  }
}
