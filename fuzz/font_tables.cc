// Fonts that hold together, with right tables around the one that the input fills, opened and drawn from all sides:
// what changes to a whole font's bytes seldom get to, since its directory and its checksums no longer fit.
#include <string>

#include "choices.h"
#include "t2k/fontbuilder.h"
#include "t2k/hinter.h"
#include "t2k_font.h"

namespace {

constexpr const char* kTables[] = {"cmap", "glyf", "kern", "hmtx", "name", "fpgm", "prep", "cvt ", "loca", "maxp",
                                   "head", "hhea", "post", "OS/2", "EBLC", "EBDT", "bloc", "bdat", "T2KG"};

// So many parts that they need more room than a glyph begins with.
Bytes manyParts(Choices& choices) {
  constexpr int kParts = 400, kMore = 0x20, kOffsets = 2;
  const int glyph = int(choices.below(3)), offset = int(choices.word() & 0xFFFF);
  Bytes entries;
  for (int left = kParts; left > 0; --left) entries.Words({left > 1 ? kMore | kOffsets : kOffsets, glyph, offset});
  return entries;
}

Bytes rest(Choices& choices, size_t most) {
  Bytes bytes;
  for (size_t left = std::min(choices.left(), most); left > 0; --left) bytes.push_back(choices.byte());
  return bytes;
}

// What a font brings to save the hinter its own look at the letters, with the right mark and length.
Bytes hintGlobals(Choices& choices) {
  Bytes record;
  record.Words({0x5648, 0x4731, int(choices.below(20)) - 1}).Add(rest(choices, kHintRecordBytes));
  record.resize(kHintRecordBytes);
  return record;
}

// A glyph's own contours, bytes for a glyph, or parts of other glyphs.
void addGlyph(SfntBuilder& font, Choices& choices) {
  const int advance = int(choices.below(1200)) - 100;
  switch (choices.below(4)) {
    case 0: {
      std::vector<FontContour> contours(1 + choices.below(3));
      for (FontContour& contour : contours)
        for (uint32_t points = 1 + choices.below(11); points > 0; --points)
          contour.push_back({int(choices.below(1000)) - 100, int(choices.below(1000)) - 200, choices.below(2) == 0});
      font.AddGlyph(SimpleGlyph(contours), advance, 0);
      break;
    }
    case 1: font.AddGlyph(CompositeGlyph(rest(choices, 1 + choices.below(24))), advance, 0); break;
    case 2: font.AddGlyph(CompositeGlyph(choices.oneIn(4) ? manyParts(choices) : Bytes()), advance, 0); break;
    default: font.AddGlyph(rest(choices, choices.below(60)), advance, int(choices.byte()));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  const uint8_t howItIsDrawn = choices.byte();
  SfntBuilder font = TwoLetters();
  font.upem = choices.oneIn(8) ? int(choices.below(70000)) : 1000;
  font.longLoca = choices.below(2);
  for (uint32_t glyphs = choices.below(6); glyphs > 0; --glyphs) addGlyph(font, choices);
  for (const char c : std::string("Ag0")) font.characters[c] = int(choices.below(10));
  for (uint32_t tables = choices.below(3); tables > 0; --tables)
    font.tables[choices.pick(kTables)] = rest(choices, choices.below(400));
  if (choices.oneIn(8)) font.tables["T2KG"] = hintGlobals(choices);
  std::vector<uint8_t> bytes = font.Build();
  bytes.push_back(howItIsDrawn);
  TryFont(bytes.data(), bytes.size(), kFontTypeSfnt);
  return 0;
}
