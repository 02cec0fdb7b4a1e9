#include "t2k/cmap.h"

#include <algorithm>
#include <memory>

#include "t2k/charmap.h"

namespace {

constexpr int kNoFormat = -1;

int FormatOf(const cmapClass& cmap, int record) {
  const uint64_t offset = cmap.platform[record].offset;
  return offset + 2 <= cmap.length ? hsBig16(cmap.cmapData.at + offset) : kNoFormat;
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

// A glyph of 0 in the glyph array gets the delta like any other.
uint16_t MapBySegments(const CharMap& map, uint32_t code) {
  CharSegment segment;
  if (!FindSegment(map, code, &segment)) return 0;
  if (!segment.range) return uint16_t(code + segment.delta);
  const uint64_t at = segment.rangeAt + segment.range + 2 * (code - segment.start);
  return at + 2 <= map.size ? uint16_t(map.WordAt(at) + segment.delta) : 0;
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
  cmap->cmapData = KeepBytes(in, cmap->length);

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
  tsi_DeAllocMem(cmap->mem, cmap->cmapData.copy);
  tsi_DeAllocMem(cmap->mem, cmap);
}

uint16_t MapToGlyph(const cmapClass& cmap, uint32_t code) {
  const uint32_t table = std::min(cmap.platform[cmap.selectedPlatform].offset, cmap.length);
  const CharMap map{cmap.cmapData.at + table, cmap.length - table};
  switch (cmap.selectedFormat) {
    case 0: return MapByBytes(map, code);
    case 4: return MapBySegments(map, code);
    default: return MapByRange(map, code);
  }
}

bool IsFigureGlyph(const cmapClass& cmap, int32_t glyph) {
  for (uint16_t figure : cmap.figIndex) {
    if (figure == glyph) return true;
  }
  return false;
}
