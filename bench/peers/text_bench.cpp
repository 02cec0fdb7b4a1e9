// A line of 60 characters beside Cairo's text, both with a warm cache: the same font at the same size, grey and bits,
// on 720 x 480 pixels of 16 bits, an opaque colour. Cairo's own pixels have 32 bits, so those are timed as well.
#include <benchmark/benchmark.h>
#include <cairo-ft.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "facepeer.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/text/hsgfontregistry.h"

namespace {

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr char kText[] = "Tonight at 8.15: The Long Way Home, a film by four brothers.";
constexpr uint32_t kLength = sizeof kText - 1;
static_assert(kLength == 60);
constexpr int kWidth = 720, kHeight = 480, kX = 20, kBaseline = 200;

template <class Pixel>
double Inked(const std::vector<Pixel>& pixels) {
  return double(std::count_if(pixels.begin(), pixels.end(), [](Pixel p) { return p != 0; }));
}

// Of the text again and again, 60 characters a line. Returns the inked pixels, 0 after an error.
double DrawText(benchmark::State& state, int size, bool grey, uint32_t characters) {
  static const uint32_t font = hsGFontRegistry::RegisterFile(kFont, 0);
  if (font == 0) {
    state.SkipWithError("no font");
    return 0;
  }
  std::vector<uint16_t> pixels(kWidth * kHeight);
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_RGB16);
  bitmap.fWidth = kWidth;
  bitmap.fHeight = kHeight;
  bitmap.fRowBytes = 2 * kWidth;
  bitmap.fImage = pixels.data();
  hsGRasterDevice device;
  device.SetBitmap(&bitmap);
  hsGAttribute paint(grey ? uint32_t{hsGAttribute::kAntiAlias} : 0);
  paint.SetColor(0xFFFF, 0xE000, 0x8000, 0x4000);
  paint.SetFontID(font);
  paint.SetTextEncoding(hsGAttribute::kUTF8);
  paint.SetTextSize(hsIntToFixed(size));
  for (auto _ : state) {
    for (uint32_t at = 0; at < characters; at += kLength)
      device.DrawText(std::min(kLength, characters - at), kText, hsIntToFixed(kX),
                      hsIntToFixed(kBaseline + int(at / kLength) * 20), &paint);
    benchmark::ClobberMemory();
  }
  device.SetBitmap(nullptr);
  return Inked(pixels);
}

// range(0): the size in pixels; range(1): grey or bits.
void BM_DrawText(benchmark::State& state) {
  const double inked = DrawText(state, int(state.range(0)), state.range(1), kLength);
  if (inked > 0) state.counters["inked"] = inked;
}

// range(0): how many.
void BM_Characters(benchmark::State& state, bool grey) { DrawText(state, 12, grey, uint32_t(state.range(0))); }

template <class Pixel>
void BM_CairoShowText(benchmark::State& state) {
  if (!PeerFace(kFont)) return state.SkipWithError("no font");
  std::vector<Pixel> pixels(kWidth * kHeight);
  cairo_surface_t* surface = cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(pixels.data()), sizeof(Pixel) == 2 ? CAIRO_FORMAT_RGB16_565 : CAIRO_FORMAT_RGB24,
      kWidth, kHeight, int{sizeof(Pixel)} * kWidth);
  cairo_t* cairo = cairo_create(surface);
  cairo_font_face_t* cairoFace = cairo_ft_font_face_create_for_ft_face(PeerFace(kFont), 0);
  cairo_set_font_face(cairo, cairoFace);
  cairo_set_font_size(cairo, double(state.range(0)));
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, state.range(1) ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
  cairo_set_font_options(cairo, options);
  cairo_set_source_rgb(cairo, 0.875, 0.5, 0.25);
  for (auto _ : state) {
    cairo_move_to(cairo, kX, kBaseline);
    cairo_show_text(cairo, kText);
    benchmark::ClobberMemory();
  }
  cairo_surface_flush(surface);
  state.counters["inked"] = Inked(pixels);
  cairo_font_options_destroy(options);
  cairo_font_face_destroy(cairoFace);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

BENCHMARK(BM_DrawText)->Name("text")->ArgsProduct({{12, 20, 32}, {1, 0}})->ArgNames({"size", "grey"});
BENCHMARK_CAPTURE(BM_Characters, grey, true)->Name("characters/grey")->Arg(6)->Arg(60)->Arg(600);
BENCHMARK_CAPTURE(BM_Characters, bits, false)->Name("characters/bits")->Arg(6)->Arg(60)->Arg(600);
BENCHMARK(BM_CairoShowText<uint16_t>)
    ->Name("text/cairo")
    ->ArgsProduct({{12, 20, 32}, {1, 0}})
    ->ArgNames({"size", "grey"});
BENCHMARK(BM_CairoShowText<uint32_t>)
    ->Name("text/cairo32")
    ->ArgsProduct({{12, 20, 32}, {1, 0}})
    ->ArgNames({"size", "grey"});

}  // namespace
