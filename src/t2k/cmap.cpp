#include "t2k/cmap.h"

#include <memory>

namespace {

constexpr int kNoFormat = -1;

// A word of the table; 0 outside it.
uint16_t WordAt(const cmapClass& cmap, uint64_t offset) {
  if (offset + 2 > cmap.length) return 0;
  return uint16_t(cmap.cmapData[offset] << 8 | cmap.cmapData[offset + 1]);
}

int FormatOf(const cmapClass& cmap, int record) {
  const uint64_t offset = cmap.platform[record].offset;
  return offset + 2 <= cmap.length ? WordAt(cmap, offset) : kNoFormat;
}

bool IsReadable(int format) { return format == 0 || format == 4 || format == 6; }

// The first record that passes the earliest round; record 0 if none passes any.
int ChooseRecord(const cmapClass& cmap) {
  for (int round = 0; round < 4; ++round) {
    for (int i = 0; i < cmap.numEncodingTables; ++i) {
      const int format = FormatOf(cmap, i);
      const bool preferred = cmap.platform[i].platformID == 3 && cmap.platform[i].encodingID == 1;
      const bool passes[] = {preferred && IsReadable(format), format == 0, format == 6, format == 4};
      if (passes[round]) return i;
    }
  }
  return 0;
}

uint16_t MapByBytes(const cmapClass& cmap, uint64_t table, uint32_t code) {
  const uint64_t at = table + 6 + code;
  return code < 256 && at < cmap.length ? cmap.cmapData[at] : 0;
}

// Segments are walked from the first. A glyph of 0 in the glyph array gets the delta like any other.
uint16_t MapBySegments(const cmapClass& cmap, uint64_t table, uint32_t code) {
  const uint32_t twiceSegments = WordAt(cmap, table + 6) & ~1u;
  const uint64_t ends = table + 14;
  const uint64_t starts = ends + twiceSegments + 2;
  const uint64_t deltas = starts + twiceSegments;
  const uint64_t ranges = deltas + twiceSegments;
  for (uint32_t i = 0; i < twiceSegments; i += 2) {
    if (WordAt(cmap, ends + i) < code) continue;
    const uint16_t start = WordAt(cmap, starts + i);
    if (code < start) return 0;
    const uint16_t delta = WordAt(cmap, deltas + i);
    const uint16_t range = WordAt(cmap, ranges + i);
    if (!range) return uint16_t(code + delta);
    const uint64_t at = ranges + i + range + 2 * (code - start);
    return at + 2 <= cmap.length ? uint16_t(WordAt(cmap, at) + delta) : 0;
  }
  return 0;
}

uint16_t MapByRange(const cmapClass& cmap, uint64_t table, uint32_t code) {
  const uint32_t firstCode = WordAt(cmap, table + 6);
  const uint32_t entryCount = WordAt(cmap, table + 8);
  const uint32_t index = code - firstCode;
  return index < entryCount ? WordAt(cmap, table + 10 + 2 * uint64_t{index}) : 0;
}

void FillFigures(cmapClass* cmap) {
  for (int i = 0; i < 10; ++i) {
    const uint16_t glyph = MapToGlyph(*cmap, '0' + i);
    cmap->figIndex[i] = glyph ? glyph : 65535;
  }
}

}  // namespace

cmapClass* ReadCmap(InputStream& in) {
  // A map that can't be read is given up without ending the font: a hinter goes on without it.
  std::unique_ptr<cmapClass, decltype(&DeleteCmap)> holder(tsi_NewRecord<cmapClass>(in.mem), DeleteCmap);
  cmapClass* cmap = holder.get();
  cmap->mem = in.mem;
  cmap->version = ReadUInt16(in);
  cmap->numEncodingTables = ReadUInt16(in);
  tsi_Assert(in.mem, cmap->numEncodingTables > 0);
  tsi_Assert(in.mem, cmap->numEncodingTables * 8u <= BytesLeft(in));
  cmap->platform = tsi_NewArray<cmapEncoding>(in.mem, cmap->numEncodingTables);
  for (int i = 0; i < cmap->numEncodingTables; ++i) {
    const uint16_t platformID = ReadUInt16(in);
    const uint16_t encodingID = ReadUInt16(in);
    cmap->platform[i] = {platformID, encodingID, ReadUInt32(in)};
  }
  Rewind(in);
  cmap->length = BytesLeft(in);
  cmap->cmapData = tsi_NewArray<uint8_t>(in.mem, cmap->length);
  ReadBytes(in, cmap->cmapData, cmap->length);

  cmap->selectedPlatform = uint16_t(ChooseRecord(*cmap));
  const int format = FormatOf(*cmap, cmap->selectedPlatform);
  tsi_Assert(in.mem, IsReadable(format), kT2KBadCmapFormat);
  cmap->selectedFormat = uint16_t(format);
  FillFigures(cmap);
  return holder.release();
}

void DeleteCmap(cmapClass* cmap) {
  if (!cmap) return;
  tsi_DeAllocMem(cmap->mem, cmap->platform);
  tsi_DeAllocMem(cmap->mem, cmap->cmapData);
  tsi_DeAllocMem(cmap->mem, cmap);
}

uint16_t MapToGlyph(const cmapClass& cmap, uint32_t code) {
  const uint64_t table = cmap.platform[cmap.selectedPlatform].offset;
  switch (cmap.selectedFormat) {
    case 0: return MapByBytes(cmap, table, code);
    case 4: return MapBySegments(cmap, table, code);
    default: return MapByRange(cmap, table, code);
  }
}

bool IsFigureGlyph(const cmapClass& cmap, int32_t glyph) {
  for (uint16_t figure : cmap.figIndex) {
    if (figure == glyph) return true;
  }
  return false;
}
