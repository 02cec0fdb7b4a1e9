// Writes the first inputs of the font engine's fuzz targets: t2k_makecorpus CORPUS_FOLDER
#include <filesystem>
#include <fstream>

#include "t2k/fontbuilder.h"

namespace {

void Write(const std::filesystem::path& path, const Bytes& bytes) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
}

const FontContour kCurve = {{0, 0}, {100, 900, false}, {300, 200, false}, {500, 0}};

SfntBuilder Letters() {
  SfntBuilder builder;
  builder.AddGlyph({}, 500, 0);
  builder.AddContours({RectContour(50, 0, 450, 700), Reversed(RectContour(150, 100, 350, 600))}, 600);
  builder.AddContours({kCurve, RectContour(30, 10, 90, 60)}, 520);
  builder.AddGlyph(CompositeGlyph(Bytes().Words({0x23, 1, 5, 5}).Words({0x8A, 2, 0x1020, 0x3000, 100, -100, 0x3000})),
                   700, 0);
  builder.AddGlyph(CompositeGlyph(Bytes().Words({0x22, 2, 0}).Words({0x200, 1, 0x0102})), 700, 0);
  builder.characters = {{'0', 2}, {'A', 1}, {'V', 2}, {'g', 3}};
  builder.tables["kern"] = SfntBuilder::KernTable({{0, 1, -11}, {1, 2, 30}});
  return builder;
}

Bytes PackedPoints() {
  Bytes glyph;
  glyph.U16(2).U8(4).U8(2).Words({0, 100, 0, 0x4000, 50, 60, 2199, 0x8000 | 2400, 0xC000 | 12000});
  return glyph.Words({12700}).U8(9).Words({0x4000 | 15000, 77, 8}).U8(128);
}

void WriteSfnts(const std::filesystem::path& folder) {
  Write(folder / "letters", Letters().Build());
  SfntBuilder shorter = Letters();
  shorter.longLoca = false;
  shorter.numberOfHMetrics = 1;
  shorter.tables["cmap"] = SfntBuilder::CmapTable({{{1, 0}, Bytes().Words({6, 14, 0, 65, 2, 1, 2})}});
  shorter.tables["kern"] = Bytes().U32(0x10000).U32(1).U32(22).Words({0, 0, 1, 0, 0, 0, 1, 2, -33});
  Write(folder / "short", shorter.Build().U8(0xC3));
  Bytes collection;
  collection.Text("ttcf").U32(0x10000).U32(1).U32(16);
  Write(folder / "collection", collection.Add(Letters().Build(16)).U8(0x9B));
  SfntBuilder packed;
  packed.glyphDataFormat = 2000;
  packed.AddGlyph(PackedPoints(), 500, 3);
  packed.AddGlyph(Bytes().Words({-1, 3, 0, 10, 10}), 500, 3);
  packed.characters = {{'A', 0}};
  Write(folder / "packed", packed.Build().U8(0x11));

  const auto changed = [&](const char* name, auto&& change) {
    SfntBuilder font = Letters();
    change(font);
    Write(folder / name, font.Build().U8(0x9B));
  };
  changed("cmap_bytes", [](SfntBuilder& font) {
    Bytes map = Bytes().Words({0, 262, 0});
    for (int i = 0; i < 256; ++i) map.U8(i % 5);
    font.tables["cmap"] = SfntBuilder::CmapTable({{{1, 0}, map}});
  });
  changed("cmap_array", [](SfntBuilder& font) {  // one segment whose glyphs come from the array, 0 among them
    font.tables["cmap"] = SfntBuilder::CmapTable(
        {{{3, 1}, Bytes().Words({4, 38, 0, 4, 4, 1, 0, 67, -1, 0, 65, -1, 3, 1, 4, 0, 1, 0, 2})}});
  });
  changed("cmap_outside", [](SfntBuilder& font) { font.tables["cmap"] = Bytes().Words({0, 1, 3, 1}).U32(0xFFFFFFF0); });
  changed("composite_circle", [](SfntBuilder& font) {
    font.AddGlyph(CompositeGlyph(Bytes().Words({0x02, 5, 0})), 500, 0);
  });
  changed("large_em", [](SfntBuilder& font) { font.upem = 16384; });
  changed("odd_em", [](SfntBuilder& font) { font.upem = 999; });
  changed("many_points", [](SfntBuilder& font) {  // more than a line of crossings has space for at first
    std::vector<FontContour> combs;
    for (int i = 0; i < 40; ++i) combs.push_back(RectContour(20 * i, 0, 20 * i + 10, 700));
    font.characters['0'] = font.AddContours(combs, 900);
  });
  changed("far_points", [](SfntBuilder& font) {
    font.characters['A'] = font.AddContours({{{-32768, -32768}, {32767, 0, false}, {0, 32767, false}, {5, 5}}}, 900);
  });
}

void WriteType1s(const std::filesystem::path& folder) {
  const auto op = [](std::initializer_list<int> values) { return Type1Builder::Program(values); };
  Type1Builder builder;
  builder.head += "/WeightVector [0.5 0.5 ] def /ItalicAngle -12 def\n";
  builder.subrs = {op({3, 4, 5}).U8(11), op({0, 10}).U8(11)};
  Bytes outline = op({20, 500, 13});
  outline.Add(op({10, 0, 21}))
      .Add(op({700, 7}))
      .Add(op({100, 6}))
      .Add(op({0, 10}))
      .Add(op({1, 2, 3, 4, 30}))
      .U8(9)
      .U8(14);
  Bytes blend = op({20, 500, 13});
  blend.Add(op({100, 40, 2, 14, 12})).U8(16).U8(12).U8(17).U8(6).U8(9).U8(14);
  builder.glyphs = {
      {"A", outline}, {"acute", blend}, {"Aacute", op({0, 500, 13}).Add(op({0, 9, 9, 65, 194, 12})).U8(6)}};
  Write(folder / "binary", builder.Build());
  Write(folder / "segments", builder.BuildPC());
  builder.hexadecimal = true;
  builder.encoding = "/Encoding 256 array\ndup 65 /A put\ndup 48 /acute put\nreadonly def\n";
  Write(folder / "hexadecimal", builder.Build());
  Write(folder / "plain", builder.PrivateText());

  const auto program = [&](const char* name, const Bytes& glyph) {
    Type1Builder font;
    font.subrs = {op({0, 10}).U8(11), op({5, 6}).U8(11)};
    font.glyphs = {{"A", glyph}};
    Write(folder / name, font.PrivateText());
  };
  program("endless_call", op({0, 500, 13}).Add(op({0, 10})));
  program("flex", op({0, 500, 13})
                      .Add(op({0, 1, 12}))
                      .U8(16)
                      .Add(op({50, 50, 21}))
                      .Add(op({0, 2, 12}))
                      .U8(16)
                      .Add(op({50, 0, 21}))
                      .Add(op({0, 0, 12}))
                      .U8(16)
                      .U8(14));
  program("division", op({100, 0, 12}).U8(12).Add(op({0, 500, 13})).U8(14));
  program("full_stack", [&] {
    Bytes glyph;
    for (int i = 0; i < 40; ++i) glyph.Add(Type1Builder::Number(i * 1000));
    return glyph.U8(5).U8(14);
  }());
  program("wide_bearing", op({100, 50, 600, 0, 12}).U8(7).Add(op({10, 5})).U8(9).U8(14));
  program("accent_of_itself", op({0, 500, 13}).Add(op({0, 9, 9, 65, 65, 12})).U8(6));
  builder.hexadecimal = false;
  builder.lenIV = 0;
  Write(folder / "no_lead_bytes", builder.Build());
  builder.mark = "-|";
  builder.head += "/FontBBox {-100 -200 1000 900} def\n";
  Write(folder / "other_mark", builder.BuildPC());
}

void WritePacked(const std::filesystem::path& folder) {
  Write(folder / "points", PackedPoints());
  Write(folder / "composite", Bytes().Words({-1, 3, 0, 10, 10}));
  Write(folder / "empty", Bytes().U16(0));
  Write(folder / "cut_header", Bytes().U8(0));
  Write(folder / "cut_points", Bytes(PackedPoints()).U16(0xFFFF));
  Write(folder / "no_points", Bytes().U16(1).U8(0));
  Write(folder / "most_contours", Bytes().U16(0x7FFF).U8(128));
  Write(folder / "long_counts", Bytes().U16(2).U8(255).U8(255).U8(255).U8(255).U8(255));
  Write(folder / "nested", Bytes().Words({-1, 0x23, 1, 5, 5, 3, 0, 10, 10}));
  Write(folder / "scaled", Bytes().Words({-1, 0x8B, 2, 0x1020, 0x3000, 100, -100, 0x3000}));
  for (int first : {0x4000, 0x8000, 0xC000})  // a contour that begins in each of the layouts of a point
    Write(folder / ("begins_" + std::to_string(first >> 14)), Bytes().U16(1).U8(3).Words({first, first, first}).U8(64));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::filesystem::path corpus = argv[1];
  WriteSfnts(corpus / "t2k_sfnt");
  WriteType1s(corpus / "t2k_type1");
  WritePacked(corpus / "t2k_packed");
}
