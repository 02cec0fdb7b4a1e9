// Fonts made up in tests: sfnts table by table, and Type 1 fonts with their encryption.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Bytes, big-endian.
struct Bytes : std::vector<uint8_t> {
  using std::vector<uint8_t>::vector;

  Bytes& U8(int v) { return push_back(uint8_t(v)), *this; }
  Bytes& U16(int v) { return U8(v >> 8).U8(v); }
  Bytes& U32(uint32_t v) { return U16(int(v >> 16)).U16(int(v & 0xFFFF)); }
  Bytes& Words(std::initializer_list<int> values) {
    for (int v : values) U16(v);
    return *this;
  }
  Bytes& Text(const std::string& text) { return insert(end(), text.begin(), text.end()), *this; }
  Bytes& Add(const std::vector<uint8_t>& other) { return insert(end(), other.begin(), other.end()), *this; }
};

struct FontPoint {
  int x, y;
  bool on = true;
};
using FontContour = std::vector<FontPoint>;

FontContour RectContour(int left, int bottom, int right, int top);  // with the clock
FontContour Reversed(FontContour contour);

// A glyf entry with plain 16-bit deltas.
Bytes SimpleGlyph(const std::vector<FontContour>& contours);
// Composite entries, ready made, after a composite's head.
Bytes CompositeGlyph(const Bytes& entries);

class SfntBuilder {
 public:
  int upem = 1000;
  int ascent = 800, descent = -200, lineGap = 90;
  int caretRise = 1, caretRun = 0;
  int numberOfHMetrics = -1;  // -1: one a glyph
  int glyphDataFormat = 0;
  bool longLoca = true;
  std::map<std::string, Bytes> tables;  // replaces or adds; an empty one leaves the table out
  std::map<int, int> characters;        // for a format 4 map

  // Returns the glyph's index.
  int AddGlyph(const Bytes& data, int aw, int lsb);
  int AddContours(const std::vector<FontContour>& contours, int aw);  // lsb as it comes
  Bytes Build(uint32_t base = 0) const;                               // base: where the font will lie in its file

  static Bytes CmapTable(const std::vector<std::pair<std::pair<int, int>, Bytes>>& records);
  static Bytes CmapFormat4(const std::map<int, int>& characters);
  static Bytes KernTable(const std::vector<std::vector<int>>& pairs);  // left, right, value; one format 0 sub-table

 private:
  struct Glyph {
    Bytes data;
    int aw, lsb;
  };
  std::vector<Glyph> glyphs_;
};

// Glyph 0 blank; glyph 1, A, a box from (50, 0) to (450, 700), 600 wide; glyph 2, i, one from (10, 0) to (290, 500),
// 300 wide.
SfntBuilder TwoLetters();

// A Type 1 font. Programs are given plain and encrypted here.
class Type1Builder {
 public:
  std::string head = "%!PS-AdobeFont-1.0: Test\n/FontMatrix [0.001 0 0 0.001 0 0] readonly def\n";
  std::string encoding = "/Encoding StandardEncoding def\n";
  std::string privateHead = "dup /Private 8 dict dup begin\n";
  std::vector<Bytes> subrs;
  std::vector<std::pair<std::string, Bytes>> glyphs;
  int lenIV = 4;
  bool hexadecimal = false;
  const char* mark = "RD";

  Bytes Build() const;
  Bytes BuildPC() const;      // in segments
  Bytes PrivateText() const;  // the private portion, nothing in it encrypted

  // A program from its numbers and the names of its operators.
  static Bytes Program(const std::string& text);

 private:
  std::string ClearText() const;
  Bytes PrivatePortion(bool seal) const;
  Bytes PrivateCipher() const;
};
