#include "t2k/fontbuilder.h"

#include <algorithm>
#include <sstream>

FontContour RectContour(int left, int bottom, int right, int top) {
  return {{left, bottom}, {left, top}, {right, top}, {right, bottom}};
}

FontContour Reversed(FontContour contour) {
  std::reverse(contour.begin(), contour.end());
  return contour;
}

Bytes SimpleGlyph(const std::vector<FontContour>& contours) {
  std::vector<FontPoint> points;
  Bytes ends;
  for (const FontContour& contour : contours) {
    points.insert(points.end(), contour.begin(), contour.end());
    ends.U16(int(points.size()) - 1);
  }
  const auto byX = [](const FontPoint& a, const FontPoint& b) { return a.x < b.x; };
  const auto byY = [](const FontPoint& a, const FontPoint& b) { return a.y < b.y; };
  const auto [left, right] = std::minmax_element(points.begin(), points.end(), byX);
  const auto [bottom, top] = std::minmax_element(points.begin(), points.end(), byY);
  Bytes glyph;
  glyph.Words({int(contours.size()), left->x, bottom->y, right->x, top->y}).Add(ends).U16(0);
  for (const FontPoint& p : points) glyph.U8(p.on);
  int last = 0;
  for (const FontPoint& p : points) glyph.U16(p.x - last), last = p.x;
  last = 0;
  for (const FontPoint& p : points) glyph.U16(p.y - last), last = p.y;
  return glyph;
}

SfntBuilder TwoLetters() {
  SfntBuilder font;
  font.AddGlyph({}, 500, 0);
  font.AddContours({RectContour(50, 0, 450, 700)}, 600);
  font.AddContours({RectContour(10, 0, 290, 500)}, 300);
  font.characters = {{'A', 1}, {'i', 2}};
  return font;
}

Bytes CompositeGlyph(const Bytes& entries) { return Bytes().Words({-1, 0, 0, 0, 0}).Add(entries); }

int SfntBuilder::AddGlyph(const Bytes& data, int aw, int lsb) {
  glyphs_.push_back({data, aw, lsb});
  return int(glyphs_.size()) - 1;
}

int SfntBuilder::AddContours(const std::vector<FontContour>& contours, int aw) {
  int left = 32767;
  for (const FontContour& contour : contours) {
    for (const FontPoint& p : contour) left = std::min(left, p.x);
  }
  return AddGlyph(SimpleGlyph(contours), aw, left);
}

Bytes SfntBuilder::Build(uint32_t base) const {
  const int count = int(glyphs_.size());
  const int metrics = numberOfHMetrics < 0 ? count : numberOfHMetrics;
  std::map<std::string, Bytes> all;
  all["head"].U32(0x10000).U32(0).U32(0).U32(0x5F0F3CF5).U16(0).U16(upem).U32(0).U32(0).U32(0).U32(0);
  all["head"].Words({0, 0, 0, 0, 0, 8, 2, longLoca, glyphDataFormat});
  all["hhea"].U32(0x10000).Words({ascent, descent, lineGap, 1234, 0, 0, 0, caretRise, caretRun, 0, 0, 0, 0, 0, 0});
  all["hhea"].U16(metrics);
  all["maxp"].U32(0x10000).Words({count, 100, 10, 100, 10, 1, 0, 0, 0, 0, 0, 0, 0, 0});
  Bytes &glyf = all["glyf"], &loca = all["loca"], &hmtx = all["hmtx"];
  for (int i = 0; i <= count; ++i) {
    longLoca ? loca.U32(uint32_t(glyf.size())) : loca.U16(int(glyf.size() / 2));
    if (i == count) break;
    const Glyph& glyph = glyphs_[size_t(i)];
    glyf.Add(glyph.data);
    if (glyf.size() % 2) glyf.U8(0);
    if (i < metrics) hmtx.U16(glyph.aw);
    hmtx.U16(glyph.lsb);
  }
  if (!characters.empty()) all["cmap"] = CmapTable({{{3, 1}, CmapFormat4(characters)}});
  for (const auto& [tag, bytes] : tables) all[tag] = bytes;
  std::erase_if(all, [](const auto& table) { return table.second.empty(); });

  Bytes font, body;
  font.U32(0x10000).Words({int(all.size()), 0, 0, 0});
  for (const auto& [tag, bytes] : all) {
    const auto offset = uint32_t(base + 12 + 16 * all.size() + body.size());
    font.Text(tag).U32(0).U32(offset).U32(uint32_t(bytes.size()));
    body.Add(bytes);
  }
  return font.Add(body);
}

Bytes SfntBuilder::CmapTable(const std::vector<std::pair<std::pair<int, int>, Bytes>>& records) {
  Bytes table, bodies;
  table.U16(0).U16(int(records.size()));
  for (const auto& [ids, body] : records) {
    table.U16(ids.first).U16(ids.second).U32(uint32_t(4 + 8 * records.size() + bodies.size()));
    bodies.Add(body);
  }
  return table.Add(bodies);
}

// One segment a character.
Bytes SfntBuilder::CmapFormat4(const std::map<int, int>& characters) {
  Bytes ends, starts, deltas, ranges;
  for (const auto& [code, glyph] : characters) {
    ends.U16(code);
    starts.U16(code);
    deltas.U16(glyph - code);
    ranges.U16(0);
  }
  ends.U16(0xFFFF).U16(0);
  starts.U16(0xFFFF);
  deltas.U16(1);
  ranges.U16(0);
  const int segments = int(characters.size()) + 1;
  return Bytes().Words({4, 16 + 8 * segments, 0, 2 * segments, 0, 0, 0}).Add(ends).Add(starts).Add(deltas).Add(ranges);
}

Bytes SfntBuilder::KernTable(const std::vector<std::vector<int>>& pairs) {
  Bytes table;
  table.Words({0, 1, 0, 14 + 6 * int(pairs.size()), 1, int(pairs.size()), 0, 0, 0});
  for (const std::vector<int>& pair : pairs) table.Words({pair[0], pair[1], pair[2]});
  return table;
}

namespace {

Bytes Encrypt(const Bytes& plain, uint16_t r) {
  Bytes cipher;
  for (uint8_t p : plain) {
    const auto c = uint8_t(p ^ (r >> 8));
    r = uint16_t((c + r) * 52845u + 22719u);
    cipher.U8(c);
  }
  return cipher;
}

Bytes Number(int v) {
  if (v >= -107 && v <= 107) return Bytes().U8(v + 139);
  if (v >= 108 && v <= 1131) return Bytes().U8(247 + ((v - 108) >> 8)).U8(v - 108);
  if (v <= -108 && v >= -1131) return Bytes().U8(251 + ((-v - 108) >> 8)).U8(-v - 108);
  return Bytes().U8(255).U32(uint32_t(v));
}

}  // namespace

Bytes Type1Builder::Program(const std::string& text) {
  static const std::map<std::string, Bytes> operators = {{"vmoveto", {4}},    {"rlineto", {5}},
                                                         {"hlineto", {6}},    {"vlineto", {7}},
                                                         {"rrcurveto", {8}},  {"closepath", {9}},
                                                         {"callsubr", {10}},  {"return", {11}},
                                                         {"hsbw", {13}},      {"endchar", {14}},
                                                         {"rmoveto", {21}},   {"hmoveto", {22}},
                                                         {"vhcurveto", {30}}, {"hvcurveto", {31}},
                                                         {"seac", {12, 6}},   {"sbw", {12, 7}},
                                                         {"div", {12, 12}},   {"callothersubr", {12, 16}},
                                                         {"pop", {12, 17}},   {"setcurrentpoint", {12, 33}}};
  Bytes program;
  std::istringstream in(text);
  for (std::string word; in >> word;) {
    const auto found = operators.find(word);
    program.Add(found != operators.end() ? found->second : Number(std::stoi(word)));
  }
  return program;
}

std::string Type1Builder::ClearText() const { return head + encoding + "currentfile eexec\n"; }

Bytes Type1Builder::PrivateCipher() const { return Encrypt(PrivatePortion(true), 55665); }

Bytes Type1Builder::PrivateText() const { return PrivatePortion(false); }

Bytes Type1Builder::PrivatePortion(bool seal) const {
  const auto sealed = [&](const Bytes& program) {
    const Bytes whole = Bytes().Text(std::string(size_t(lenIV), 'x')).Add(program);
    return seal ? Encrypt(whole, 4330) : whole;
  };
  Bytes plain;
  plain.Text("abcd").Text(privateHead).Text("/lenIV " + std::to_string(lenIV) + " def\n");
  plain.Text("/Subrs " + std::to_string(subrs.size()) + " array\n");
  for (size_t i = 0; i < subrs.size(); ++i) {
    const Bytes program = sealed(subrs[i]);
    plain.Text("dup " + std::to_string(i) + " " + std::to_string(program.size()) + " " + mark + " ");
    plain.Add(program).Text(" NP\n");
  }
  plain.Text("2 index /CharStrings " + std::to_string(glyphs.size()) + " dict dup begin\n");
  for (const auto& [name, program] : glyphs) {
    const Bytes data = sealed(program);
    plain.Text("/" + name + " " + std::to_string(data.size()) + " " + mark + " ").Add(data).Text(" ND\n");
  }
  plain.Text("end end readonly put mark currentfile closefile\n");
  return plain;
}

Bytes Type1Builder::Build() const {
  const Bytes cipher = PrivateCipher();
  Bytes font;
  font.Text(ClearText());
  if (!hexadecimal) return font.Add(cipher);
  for (size_t i = 0; i < cipher.size(); ++i) {
    const char* digits = "0123456789abcdef";
    font.U8(digits[cipher[i] >> 4]).U8(digits[cipher[i] & 15]);
    if (i % 32 == 31) font.Text("\r\n");
  }
  return font;
}

Bytes Type1Builder::BuildPC() const {
  const auto segment = [](int type, const Bytes& data) {
    const size_t n = data.size();
    return Bytes().U8(128).U8(type).U8(int(n)).U8(int(n >> 8)).U8(int(n >> 16)).U8(int(n >> 24)).Add(data);
  };
  const Bytes cipher = PrivateCipher();
  const Bytes half(cipher.begin(), cipher.begin() + 40), rest(cipher.begin() + 40, cipher.end());
  return segment(1, Bytes().Text(ClearText())).Add(segment(2, half)).Add(segment(2, rest)).U8(128).U8(3);
}
