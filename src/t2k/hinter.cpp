#include "t2k/hinter.h"

#include <algorithm>
#include <vector>

#include "gfx/foundation/hsbytes.h"
#include "t2k/hintedges.h"
#include "t2k/t1.h"
#include "t2k/unitscale.h"

namespace {

// Letters that show where a zone is: flat ends, and round ones that overshoot it.
struct ZoneLetters {
  bool isTop;
  const char* flat;
  const char* round;
};

constexpr ZoneLetters kZoneLetters[kMaxHintZones] = {
    {false, "HEZxz", "OCoe"},  // baseline
    {true, "xzvw", "oecs"},    // x-height
    {true, "HEZTL", "OCQS"},   // capitals
    {true, "bdhkl", "f"},      // ascenders
    {true, "147", "0689"},     // figures
    {false, "pq", "gj"},       // descenders
};
constexpr const char* kStemLetters[2] = {"HIEFLhiln", "eztHEFTL"};  // by HintAxis

constexpr int kSameZoneShare = 60;      // of an em: zones closer together are one
constexpr int32_t kOvershootFrom = 40;  // 26.6: a smaller overshoot isn't shown
constexpr uint32_t kRecordStamp = 0x56484731;

int16_t Median(std::vector<int16_t>& values) {
  auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// A letter's edges; none if the font lacks it or its bytes are damaged.
std::vector<HintEdge> EdgesOfLetter(sfntClass* font, char letter, HintAxis axis, int upem) {
  try {
    const uint16_t index = GetSfntGlyphIndex(font, uint32_t(letter));
    const bool missing = font->T1 ? font->T1->charCode[index] != letter : index == 0;
    if (missing) return {};
    uint16_t aw;
    const GlyphHolder glyph(GetGlyphByIndex(font, index, false, &aw));
    return glyph->contourCount > 0 ? FindHintEdges(*glyph.get(), axis, upem) : std::vector<HintEdge>{};
  } catch (const tsiError& error) {
    if (error.code == kT2KOutOfMemory) throw;
    return {};
  }
}

void AddExtremes(sfntClass* font, const char* letters, bool isTop, int upem, std::vector<int16_t>& heights) {
  for (; *letters; ++letters) {
    const std::vector<HintEdge> edges = EdgesOfLetter(font, *letters, kHintY, upem);
    if (edges.empty()) continue;
    const HintEdge& extreme = isTop ? edges.back() : edges.front();
    if (extreme.isTop == isTop) heights.push_back(int16_t(isTop ? extreme.high : extreme.low));
  }
}

void AddZone(HintGlobals& globals, HintZone zone, int upem) {
  for (int i = 0; i < globals.zoneCount; ++i) {
    const HintZone& other = globals.zone[i];
    if (other.isTop == zone.isTop && std::abs(other.flat - zone.flat) <= upem / kSameZoneShare) return;
  }
  globals.zone[globals.zoneCount++] = zone;
}

int16_t UsualStem(sfntClass* font, HintAxis axis, int upem) {
  std::vector<int16_t> stems;
  for (const char* letter = kStemLetters[axis]; *letter; ++letter) {
    const std::vector<HintEdge> edges = EdgesOfLetter(font, *letter, axis, upem);
    for (const HintEdge& edge : edges) {
      if (!edge.isTop && edge.partner >= 0) stems.push_back(int16_t(edges[size_t(edge.partner)].high - edge.low));
    }
  }
  return stems.empty() ? int16_t{0} : Median(stems);
}

int32_t RoundToPixel(int32_t v) { return (v + 32) & ~63; }

int16_t Get16(const uint8_t*& in) {
  const auto value = int16_t(hsBig16(in));
  in += 2;
  return value;
}

}  // namespace

HinterClass* NewHinter(tsiMemObject* mem, int upem, HinterScript script) {
  auto* hinter = tsi_NewRecord<HinterClass>(mem);
  hinter->mem = mem;
  hinter->upem = upem;
  hinter->script = script;
  return hinter;
}

void DeleteHinter(HinterClass* hinter) {
  if (hinter) tsi_DeAllocMem(hinter->mem, hinter);
}

// Stamp (32 bits), zone count, the two stems, then for each zone flat, round, isTop; all 16 bits big-endian, the rest
// zero.
bool LoadHintGlobals(HinterClass* hinter, const uint8_t* record, uint32_t length) {
  if (length < kHintRecordBytes) return false;
  const uint8_t* in = record;
  const uint32_t stamp = hsBig32(in);
  in += 4;
  const int count = Get16(in);
  if (stamp != kRecordStamp || count < 0 || count > kMaxHintZones) return false;
  hinter->globals = {};
  hinter->globals.zoneCount = count;
  for (int16_t& stem : hinter->globals.stem) stem = Get16(in);
  for (int i = 0; i < count; ++i) {
    HintZone& zone = hinter->globals.zone[i];
    zone.flat = Get16(in);
    zone.round = Get16(in);
    zone.isTop = Get16(in) != 0;
  }
  return true;
}

void ComputeHintGlobals(HinterClass* hinter, sfntClass* font) {
  hinter->globals = {};
  if (font->T1 == nullptr && !GetSfntTable(font, hsTag("cmap"))) return;
  for (const ZoneLetters& letters : kZoneLetters) {
    std::vector<int16_t> flat, round;
    AddExtremes(font, letters.flat, letters.isTop, hinter->upem, flat);
    AddExtremes(font, letters.round, letters.isTop, hinter->upem, round);
    if (flat.empty() && round.empty()) continue;
    const int16_t flatHeight = Median(flat.empty() ? round : flat);
    const int16_t roundHeight = round.empty() ? flatHeight : Median(round);
    AddZone(hinter->globals, {flatHeight, roundHeight, letters.isTop}, hinter->upem);
  }
  for (const HintAxis axis : {kHintX, kHintY}) hinter->globals.stem[axis] = UsualStem(font, axis, hinter->upem);
}

bool SetHintPixelSizes(HinterClass* hinter, int xPixelsPerEm, int yPixelsPerEm) {
  hinter->pixelsPerEm[kHintX] = xPixelsPerEm;
  hinter->pixelsPerEm[kHintY] = yPixelsPerEm;
  const auto scale = [&](int units, HintAxis axis) {
    return ScaleUnits(units, hinter->pixelsPerEm[axis], hinter->upem);
  };
  for (int i = 0; i < hinter->globals.zoneCount; ++i) {
    const HintZone& zone = hinter->globals.zone[i];
    const int32_t overshoot = scale(zone.round - zone.flat, kHintY);
    hinter->zonePlace[i] = RoundToPixel(scale(zone.flat, kHintY));
    hinter->zoneRound[i] = hinter->zonePlace[i];
    if (std::abs(overshoot) >= kOvershootFrom) hinter->zoneRound[i] += RoundToPixel(overshoot);
  }
  for (const HintAxis axis : {kHintX, kHintY}) {
    hinter->stemWidth[axis] = std::max(64, RoundToPixel(scale(hinter->globals.stem[axis], axis)));
  }
  // Sharpening would take grey off vertical stems by where they happen to fall, and so make them uneven.
  return false;
}
