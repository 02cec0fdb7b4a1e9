// Type 1 fonts that hold together, with glyph programs and subroutines made of numbers and operators: changes to a font
// seldom leave the lengths of its programs right.
#include <string>

#include "choices.h"
#include "t2k/fontbuilder.h"
#include "t2k_font.h"

namespace {

constexpr const char* kNames[] = {".notdef", "A", "V", "f", "g", "acute", "Aacute", "zero"};
constexpr const char* kHeads[] = {"",
                                  "/em 2000 def\n",
                                  "/ascent 900 def /descent 100 def\n",
                                  "/ItalicAngle -12 def\n",
                                  "/FontMatrix [1e-3 0 0 .001E+0 12345678901234567890123 0] def\n",
                                  "/em 12345678901234567890123456789.5 def\n",
                                  "/WeightVector [0.25 0.75 ] def\n",
                                  "/WeightVector [0.1 0.2 0.3 0.4 ] def\n"};
constexpr const char* kEncodings[] = {"/Encoding StandardEncoding def\n",
                                      "/Encoding 256 array\ndup 65 /V put\ndup 48 /A put\nreadonly def\n",
                                      "/Encoding 2 array dup 65 /", "/Encoding 256 array dup 65"};

void putNumber(Bytes& program, Choices& choices) {
  switch (choices.below(4)) {
    case 0:  // 247 to 254, and a byte
      program.push_back(uint8_t(247 + choices.below(8)));
      program.push_back(choices.byte());
      break;
    case 1:  // 255, and four
      program.push_back(255);
      for (int i = 0; i < 4; ++i) program.push_back(choices.byte());
      break;
    default: program.push_back(uint8_t(32 + choices.below(215)));
  }
}

void putSmall(Bytes& program, uint32_t number) { program.push_back(uint8_t(139 + number)); }

void putOperator(Bytes& program, Choices& choices) {
  constexpr uint8_t kOperators[] = {1, 3, 4, 5, 6, 7, 8, 9, 11, 13, 14, 21, 22, 30, 31};
  constexpr uint8_t kEscaped[] = {0, 1, 2, 6, 7, 12, 17, 33};
  constexpr uint8_t kOtherSubrs[] = {0, 1, 2, 3, 12, 13, 14, 15, 16, 17, 18};
  switch (choices.below(8)) {
    case 0: program.insert(program.end(), {12, choices.pick(kEscaped)}); break;
    case 1:  // callsubr
      putSmall(program, choices.below(8));
      program.push_back(10);
      break;
    case 2:  // callothersubr
      putSmall(program, choices.below(25));
      putSmall(program, choices.pick(kOtherSubrs));
      program.insert(program.end(), {12, 16});
      break;
    case 3: program.push_back(choices.byte()); break;
    default: program.push_back(choices.pick(kOperators));
  }
}

Bytes programOf(Choices& choices) {
  Bytes program;
  for (uint32_t operators = choices.below(40); operators > 0; --operators) {
    for (uint32_t numbers = choices.below(8); numbers > 0; --numbers) putNumber(program, choices);
    putOperator(program, choices);
  }
  if (choices.below(4) != 0) program.push_back(14);  // endchar
  return program;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  const uint8_t howItIsDrawn = choices.byte();
  Type1Builder font;
  font.head.insert(font.head.find('\n') + 1, choices.pick(kHeads));  // of two that are the same the first counts
  font.head += choices.pick(kHeads);
  font.encoding = choices.pick(kEncodings);
  font.lenIV = choices.oneIn(4) ? int(choices.below(6)) : 4;
  if (choices.oneIn(8)) font.privateHead += "/lenIV -1 def\n";
  font.mark = choices.below(2) != 0 ? "-|" : "RD";
  font.hexadecimal = choices.oneIn(8);
  const bool inSegments = choices.oneIn(8);
  for (uint32_t subrs = choices.below(6); subrs > 0; --subrs) font.subrs.push_back(programOf(choices));
  for (uint32_t glyphs = 1 + choices.below(8); glyphs > 0; --glyphs)
    font.glyphs.emplace_back(choices.pick(kNames), programOf(choices));
  std::vector<uint8_t> bytes = inSegments ? font.BuildPC() : font.Build();
  bytes.push_back(howItIsDrawn);
  TryFont(bytes.data(), bytes.size(), kFontType1);
  return 0;
}
