// The font engine beside FreeType without hinting, on DejaVu Sans: all glyphs at 24 pixels in grey, their outlines
// alone, and opening the font. Time is for one glyph, or one opening.
//
// Grey level 3 is what the text system asks for; the other side always makes 256 levels.
#include <benchmark/benchmark.h>
#include <ft2build.h>

#include <fstream>
#include <iterator>
#include <vector>

#include FT_FREETYPE_H

#include "t2k/t2k.h"

namespace {

constexpr const char* kFontPath = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr int kPixels = 24;

const std::vector<uint8_t>& FontBytes() {
  static const std::vector<uint8_t> bytes = [] {
    std::ifstream in(kFontPath, std::ios::binary);
    return std::vector<uint8_t>{std::istreambuf_iterator<char>(in), {}};
  }();
  return bytes;
}

class Engine {
 public:
  Engine() {
    mem_ = tsi_NewMemhandler(&err_);
    in_ = New_InputStream3(mem_, FontBytes().data(), uint32_t(FontBytes().size()), &err_);
    font_ = New_sfntClass(mem_, kFontTypeSfnt, 0, in_, nullptr, &err_);
    if (font_) t = NewT2K(mem_, font_, &err_);
  }
  ~Engine() {
    DeleteT2K(t, &err_);
    Delete_sfntClass(font_, &err_);
    Delete_InputStream(in_, &err_);
    tsi_DeleteMemhandler(mem_);
  }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void SetSize(int pixels) {
    const T2KMatrix matrix{pixels << 16, 0, 0, pixels << 16};
    T2K_NewTransformation(t, true, 72, 72, &matrix, &err_);
  }

  T2K* t = nullptr;

 private:
  int err_ = 0;
  tsiMemObject* mem_;
  InputStream* in_;
  sfntClass* font_ = nullptr;
};

class Peer {
 public:
  Peer() {
    FT_Init_FreeType(&library_);
    FT_New_Memory_Face(library_, FontBytes().data(), FT_Long(FontBytes().size()), 0, &face);
  }
  ~Peer() {
    FT_Done_Face(face);
    FT_Done_FreeType(library_);
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  FT_Face face = nullptr;

 private:
  FT_Library library_ = nullptr;
};

void RenderAll(benchmark::State& state, int level, int cmd) {
  if (FontBytes().empty()) return state.SkipWithError("DejaVu Sans isn't installed");
  Engine engine;
  engine.SetSize(kPixels);
  int err = 0, glyph = 0;
  for (auto _ : state) {
    T2K_RenderGlyph(engine.t, glyph, 0, 0, level, cmd | kT2KByIndex, &err);
    glyph = glyph + 1 < engine.t->numGlyphs ? glyph + 1 : 0;
  }
  if (err) state.SkipWithError("a glyph failed");
}

void PeerRenderAll(benchmark::State& state, bool render) {
  if (FontBytes().empty()) return state.SkipWithError("DejaVu Sans isn't installed");
  Peer peer;
  FT_Set_Pixel_Sizes(peer.face, kPixels, kPixels);
  FT_UInt glyph = 0;
  for (auto _ : state) {
    FT_Load_Glyph(peer.face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
    if (render) FT_Render_Glyph(peer.face->glyph, FT_RENDER_MODE_NORMAL);
    glyph = FT_Long(glyph) + 1 < peer.face->num_glyphs ? glyph + 1 : 0;
  }
}

void Open(benchmark::State& state) {
  for (auto _ : state) Engine();
}

void PeerOpen(benchmark::State& state) {
  for (auto _ : state) Peer();
}

// Each run walks all 6,253 glyphs some times over.
constexpr int kGlyphRuns = 6253 * 20;

BENCHMARK_CAPTURE(RenderAll, grey_3, 3, kT2KBitmap)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(PeerRenderAll, grey, true)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(RenderAll, grey_1, 1, kT2KBitmap)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(RenderAll, grey_3_hinted, 3, kT2KBitmap | kT2KGridFit)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(RenderAll, mono, 0, kT2KBitmap)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(RenderAll, outlines, 0, 0)->Iterations(kGlyphRuns);
BENCHMARK_CAPTURE(PeerRenderAll, outlines, false)->Iterations(kGlyphRuns);
BENCHMARK(Open);
BENCHMARK(PeerOpen);

}  // namespace
