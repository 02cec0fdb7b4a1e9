// The font engine beside FreeType without hinting. Time is for one glyph, or one opening.
//
// Glyphs: all that a font has, one after the other and none of them kept, in grey or as outlines; DejaVu Sans and
// Liberation Sans at 8 to 40 pixels. Grey level 3 is what the text system asks for; the other side always makes 256
// levels, with its hinting off. Before it is timed, the ink of both is compared, or the points of the outlines.
//
// Opening: fonts in memory, from their bytes to a scaler, and on to a first glyph in grey. The other side keeps its
// library from one to the next. Before they are timed, the glyphs are counted, and the ink of the first one is
// compared.
#include <benchmark/benchmark.h>
#include <ft2build.h>

#include <array>
#include <cmath>
#include <fstream>
#include <iterator>
#include <vector>

#include FT_FREETYPE_H

#include "t2k/fontbuilder.h"
#include "t2k/glyph.h"
#include "t2k/t2k.h"

namespace {

constexpr const char* kFonts[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                  "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"};

const std::vector<uint8_t>& FontBytes(int64_t font) {
  static const auto kBytes = [] {
    std::array<std::vector<uint8_t>, std::size(kFonts)> all;
    for (size_t i = 0; i < all.size(); ++i) {
      std::ifstream in(kFonts[i], std::ios::binary);
      all[i] = {std::istreambuf_iterator<char>(in), {}};
    }
    return all;
  }();
  return kBytes[size_t(font)];
}

class Engine {
 public:
  explicit Engine(int64_t font) : Engine(FontBytes(font)) {}
  explicit Engine(const std::vector<uint8_t>& bytes) {
    mem_ = tsi_NewMemhandler(&err);
    in_ = New_InputStream3(mem_, bytes.data(), uint32_t(bytes.size()), &err);
    font_ = New_sfntClass(mem_, kFontTypeSfnt, 0, in_, nullptr, &err);
    if (font_) t = NewT2K(mem_, font_, &err);
  }
  ~Engine() {
    DeleteT2K(t, &err);
    Delete_sfntClass(font_, &err);
    Delete_InputStream(in_, &err);
    tsi_DeleteMemhandler(mem_);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void SetSize(int pixels) {
    const T2KMatrix matrix{pixels << 16, 0, 0, pixels << 16};
    T2K_NewTransformation(t, false, 72, 72, &matrix, &err);
  }
  void Render(int code, int level, int cmd) { T2K_RenderGlyph(t, code, 0, 0, level, cmd, &err); }

  T2K* t = nullptr;
  int err = 0;

 private:
  tsiMemObject* mem_;
  InputStream* in_;
  sfntClass* font_ = nullptr;
};

class Peer {
 public:
  explicit Peer(int64_t font) {
    FT_New_Memory_Face(Library(), FontBytes(font).data(), FT_Long(FontBytes(font).size()), 0, &face);
  }
  ~Peer() { FT_Done_Face(face); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void Render(FT_UInt glyph, bool grey) {
    FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
    if (grey) FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
  }

  bool HasParts(FT_UInt glyph) {
    FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_NO_RECURSE);
    return face->glyph->format == FT_GLYPH_FORMAT_COMPOSITE;
  }

  FT_Face face = nullptr;

 private:
  static FT_Library Library() {
    static const FT_Library kLibrary = [] {
      FT_Library library;
      FT_Init_FreeType(&library);
      return library;
    }();
    return kLibrary;
  }
};

// Of the glyph that was rendered last, in pixels.
double InkOf(const Engine& engine) {
  double ink = 0;
  for (int i = 0; i < engine.t->rowBytes * engine.t->height; ++i) ink += engine.t->baseAddr[i] / 120.0;
  return ink;
}
double InkOf(const Peer& peer) {
  double ink = 0;
  const FT_Bitmap& bitmap = peer.face->glyph->bitmap;
  for (unsigned y = 0; y < bitmap.rows; ++y)
    for (unsigned x = 0; x < bitmap.width; ++x) ink += bitmap.buffer[int(y) * bitmap.pitch + int(x)] / 255.0;
  return ink;
}

// Two per cent are the few lines that a pixel is sampled by.
bool AreClose(double ours, double theirs) { return std::abs(ours - theirs) < theirs / 50; }

// Over all glyphs.
bool InkIsAlike(int64_t font, int pixels) {
  Engine engine(font);
  Peer peer(font);
  engine.SetSize(pixels);
  FT_Set_Pixel_Sizes(peer.face, 0, FT_UInt(pixels));
  double ours = 0, theirs = 0;
  for (int glyph = 0; glyph < engine.t->numGlyphs; ++glyph) {
    engine.Render(glyph, 3, kT2KBitmap | kT2KByIndex);
    ours += InkOf(engine);
    peer.Render(FT_UInt(glyph), true);
    theirs += InkOf(peer);
  }
  return AreClose(ours, theirs);
}

// Whether every glyph has the same points, none further off than rounding brings it. Parts that a glyph takes from
// others may lie elsewhere, since the two place them by different rules.
bool OutlinesAreAlike(int64_t font, int pixels) {
  Engine engine(font);
  Peer peer(font);
  engine.SetSize(pixels);
  FT_Set_Pixel_Sizes(peer.face, 0, FT_UInt(pixels));
  const auto close = [](int64_t a, int64_t b) { return std::abs(a - b) <= 2; };  // in 64ths of a pixel
  for (int index = 0; index < engine.t->numGlyphs; ++index) {
    engine.Render(index, 0, kT2KByIndex | kT2KKeepGlyph);
    const bool hasParts = peer.HasParts(FT_UInt(index));
    peer.Render(FT_UInt(index), false);
    const GlyphClass& ours = *engine.t->glyph;
    const FT_Outline& theirs = peer.face->glyph->outline;
    if (ours.pointCount != theirs.n_points) return false;
    for (int i = 0; !hasParts && i < ours.pointCount; ++i)
      if (!close(ours.x[i], theirs.points[i].x) || !close(ours.y[i], theirs.points[i].y)) return false;
  }
  return true;
}

// range(0): the font; range(1): pixels an em. One iteration is a glyph.
void Glyphs(benchmark::State& state, int level, int cmd) {
  if (FontBytes(state.range(0)).empty()) return state.SkipWithError("the font isn't installed");
  const int pixels = int(state.range(1));
  if (level == 3 && !InkIsAlike(state.range(0), pixels)) return state.SkipWithError("the ink differs");
  if (cmd == 0 && !OutlinesAreAlike(state.range(0), pixels)) return state.SkipWithError("the outlines differ");
  Engine engine(state.range(0));
  engine.SetSize(pixels);
  int glyph = 0;
  for (auto _ : state) {
    engine.Render(glyph, level, cmd | kT2KByIndex);
    glyph = glyph + 1 < engine.t->numGlyphs ? glyph + 1 : 0;
  }
  if (engine.err) state.SkipWithError("a glyph failed");
}

void PeersGlyphs(benchmark::State& state, bool grey) {
  if (FontBytes(state.range(0)).empty()) return state.SkipWithError("the font isn't installed");
  Peer peer(state.range(0));
  FT_Set_Pixel_Sizes(peer.face, 0, FT_UInt(state.range(1)));
  FT_UInt glyph = 0;
  for (auto _ : state) {
    peer.Render(glyph, grey);
    glyph = FT_Long(glyph) + 1 < peer.face->num_glyphs ? glyph + 1 : 0;
  }
}

void RenderFirst(Engine& engine) {
  engine.SetSize(20);
  engine.Render('g', 3, kT2KBitmap);
}
void RenderFirst(Peer& peer) {
  FT_Set_Pixel_Sizes(peer.face, 0, 20);
  peer.Render(FT_Get_Char_Index(peer.face, 'g'), true);
}

// If they aren't, the benchmark is skipped with an error.
bool FontsAreAlike(benchmark::State& state) {
  if (FontBytes(state.range(0)).empty()) {
    state.SkipWithError("the font isn't installed");
    return false;
  }
  Engine engine(state.range(0));
  Peer peer(state.range(0));
  bool areAlike = engine.t && peer.face;
  if (areAlike) {
    RenderFirst(engine);
    RenderFirst(peer);
    areAlike = engine.t->numGlyphs == peer.face->num_glyphs && AreClose(InkOf(engine), InkOf(peer));
  }
  if (!areAlike) state.SkipWithError("the fonts differ");
  return areAlike;
}

void Open(benchmark::State& state) {
  if (!FontsAreAlike(state)) return;
  for (auto _ : state) benchmark::DoNotOptimize(Engine(state.range(0)).t);
}
void PeersOpen(benchmark::State& state) {
  if (!FontsAreAlike(state)) return;
  for (auto _ : state) benchmark::DoNotOptimize(Peer(state.range(0)).face);
}

void FirstGlyph(benchmark::State& state) {
  if (!FontsAreAlike(state)) return;
  for (auto _ : state) {
    Engine engine(state.range(0));
    RenderFirst(engine);
    benchmark::DoNotOptimize(engine.t->baseAddr);
  }
}
void PeersFirstGlyph(benchmark::State& state) {
  if (!FontsAreAlike(state)) return;
  for (auto _ : state) {
    Peer peer(state.range(0));
    RenderFirst(peer);
    benchmark::DoNotOptimize(peer.face->glyph->bitmap.buffer);
  }
}

// ---- growth

// Stars, drawn in curves.
Bytes FontOfStars(int glyphs, int points) {
  FontContour star;
  for (int i = 0; i < points; ++i) {
    const double angle = 2 * std::acos(-1) * i / points, radius = i % 2 ? 250 : 400;
    star.push_back({int(std::lround(400 + radius * std::sin(angle))), int(std::lround(400 + radius * std::cos(angle))),
                    i % 2 == 0});
  }
  SfntBuilder font;
  for (int i = 0; i < glyphs; ++i) font.AddContours({star}, 800);
  font.characters['g'] = glyphs - 1;
  return font.Build();
}

// range(0): the points of the glyph.
void GlyphOfPoints(benchmark::State& state, int level, int cmd) {
  const Bytes bytes = FontOfStars(2, int(state.range(0)));
  Engine engine(bytes);
  engine.SetSize(24);
  for (auto _ : state) engine.Render(1, level, cmd | kT2KByIndex);
  if (engine.err) state.SkipWithError("the glyph failed");
}

// range(0): the glyphs of the font.
void OpenFontOfGlyphs(benchmark::State& state, bool render) {
  const Bytes bytes = FontOfStars(int(state.range(0)), 12);
  for (auto _ : state) {
    Engine engine(bytes);
    if (render) RenderFirst(engine);
    benchmark::DoNotOptimize(engine.t);
    if (engine.err) return state.SkipWithError("the font failed");
  }
}

BENCHMARK_CAPTURE(GlyphOfPoints, grey, 3, kT2KBitmap)->Name("growth/grey")->Arg(12)->Arg(120)->Arg(1200);
BENCHMARK_CAPTURE(GlyphOfPoints, outlines, 0, 0)->Name("growth/outlines")->Arg(12)->Arg(120)->Arg(1200);
BENCHMARK_CAPTURE(OpenFontOfGlyphs, open, false)->Name("growth/open")->Arg(60)->Arg(600)->Arg(6000);
BENCHMARK_CAPTURE(OpenFontOfGlyphs, first, true)->Name("growth/first_glyph")->Arg(60)->Arg(600)->Arg(6000);

// ---- beside the other

// Whole walks over a font, so that every run times the same glyphs.
void EachFontAndSize(benchmark::internal::Benchmark* bench) {
  bench->ArgsProduct({{0, 1}, {8, 12, 16, 24, 40}})->Iterations(6253 * 2);
}

BENCHMARK_CAPTURE(Glyphs, grey, 3, kT2KBitmap)->Name("grey")->Apply(EachFontAndSize);
BENCHMARK_CAPTURE(PeersGlyphs, grey, true)->Name("grey/freetype")->Apply(EachFontAndSize);
BENCHMARK_CAPTURE(Glyphs, outlines, 0, 0)->Name("outlines")->Apply(EachFontAndSize);
BENCHMARK_CAPTURE(PeersGlyphs, outlines, false)->Name("outlines/freetype")->Apply(EachFontAndSize);
BENCHMARK_CAPTURE(Glyphs, grey_1, 1, kT2KBitmap)->Name("grey_level_1")->Args({0, 24});
BENCHMARK_CAPTURE(Glyphs, hinted, 3, kT2KBitmap | kT2KGridFit)->Name("grey_hinted")->Args({0, 24});
BENCHMARK_CAPTURE(Glyphs, mono, 0, kT2KBitmap)->Name("bits")->Args({0, 24});
BENCHMARK(Open)->Name("open")->Arg(0)->Arg(1);
BENCHMARK(PeersOpen)->Name("open/freetype")->Arg(0)->Arg(1);
BENCHMARK(FirstGlyph)->Name("first_glyph")->Arg(0)->Arg(1);
BENCHMARK(PeersFirstGlyph)->Name("first_glyph/freetype")->Arg(0)->Arg(1);

}  // namespace
