// Solid and blended rectangles and palette sprites on a 720 x 480 screen of 16 bits, beside pixman's fills and
// composites of the same rectangles onto r5g6b5. Both sides keep their paint and picture from call to call, as a
// program that draws would.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <random>
#include <vector>

#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgsprite_choose.h"
#include "gfx/vector/hsgblitter.h"

namespace {

constexpr int kWidth = 720, kHeight = 480;

struct Rect {
  int x, y, width, height;
};

std::vector<Rect> RandomRects(int size) {
  std::mt19937 random(1);
  const auto below = [&](int n) { return int(random() % unsigned(n)); };
  std::vector<Rect> rects;
  for (int i = 0; i < 64; ++i) {
    const int width = size / 2 + below(size), height = std::min(size / 2 + below(size), kHeight);
    rects.push_back({below(kWidth - width + 1), below(kHeight - height + 1), width, height});
  }
  return rects;
}

// A screen of random pixels, or of runs as drawn pages have them.
std::vector<uint16_t> Screen(bool runs) {
  std::mt19937 random(2);
  std::vector<uint16_t> pixels(kWidth * kHeight);
  for (size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = runs && random() % 16 ? (i ? pixels[i - 1] : uint16_t(0)) : uint16_t(random());
  return pixels;
}

hsGBitmap Bitmap(uint8_t config, void* pixels, int width, int height) {
  hsGBitmap bitmap(config);
  bitmap.fImage = pixels;
  bitmap.fWidth = uint32_t(width);
  bitmap.fHeight = uint32_t(height);
  bitmap.fRowBytes = uint32_t(width) * bitmap.fPixelSize / 8;
  return bitmap;
}

void CountPixels(benchmark::State& state, const std::vector<Rect>& rects) {
  int64_t pixels = 0;
  for (const Rect& r : rects) pixels += int64_t{r.width} * r.height;
  state.SetItemsProcessed(state.iterations() * pixels);
}

class PixmanScreen {
 public:
  explicit PixmanScreen(std::vector<uint16_t>& pixels)
      : image(pixman_image_create_bits(PIXMAN_r5g6b5, kWidth, kHeight, reinterpret_cast<uint32_t*>(pixels.data()),
                                       kWidth * 2)) {}
  ~PixmanScreen() { pixman_image_unref(image); }
  pixman_image_t* image;
};

// alpha 0xFFFF stores, anything below blends.
void RectsOurs(benchmark::State& state, uint16_t alpha, bool runs) {
  const std::vector<Rect> rects = RandomRects(int(state.range(0)));
  std::vector<uint16_t> pixels = Screen(runs);
  const hsGBitmap device = Bitmap(hsGBitmap::kConfig_RGB16, pixels.data(), kWidth, kHeight);
  hsGAttribute attr;
  attr.SetColor(alpha, 0x3000, 0x9000, 0xE000);
  for (auto _ : state) {
    for (const Rect& r : rects) {
      hsGBlitter* blitter = attr.GetBlitter(device, 0, hsMatrix());
      blitter->BlitRect(r.y, r.x, r.width, r.height);
      blitter->UnRef();
    }
    benchmark::ClobberMemory();
  }
  CountPixels(state, rects);
}

void SolidPixman(benchmark::State& state) {
  const std::vector<Rect> rects = RandomRects(int(state.range(0)));
  std::vector<uint16_t> pixels = Screen(false);
  for (auto _ : state) {
    for (const Rect& r : rects)
      pixman_fill(reinterpret_cast<uint32_t*>(pixels.data()), kWidth / 2, 16, r.x, r.y, r.width, r.height, 0x3A5C);
    benchmark::ClobberMemory();
  }
  CountPixels(state, rects);
}

void BlendedPixman(benchmark::State& state, bool runs) {
  const std::vector<Rect> rects = RandomRects(int(state.range(0)));
  std::vector<uint16_t> pixels = Screen(runs);
  const PixmanScreen screen(pixels);
  const pixman_color_t color{0x1800, 0x4800, 0x7000, 0x8000};  // premultiplied
  pixman_image_t* source = pixman_image_create_solid_fill(&color);
  for (auto _ : state) {
    for (const Rect& r : rects)
      pixman_image_composite32(PIXMAN_OP_OVER, source, nullptr, screen.image, 0, 0, 0, 0, r.x, r.y, r.width, r.height);
    benchmark::ClobberMemory();
  }
  pixman_image_unref(source);
  CountPixels(state, rects);
}

void SolidOurs(benchmark::State& state) { RectsOurs(state, 0xFFFF, false); }
void BlendedOurs(benchmark::State& state) { RectsOurs(state, 0x8000, false); }
void BlendedRunsOurs(benchmark::State& state) { RectsOurs(state, 0x8000, true); }
void BlendedNoisePixman(benchmark::State& state) { BlendedPixman(state, false); }
void BlendedRunsPixman(benchmark::State& state) { BlendedPixman(state, true); }

BENCHMARK(SolidOurs)->Name("solid")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(SolidPixman)->Name("solid/pixman")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(BlendedOurs)->Name("blend/noise")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(BlendedNoisePixman)->Name("blend/noise/pixman")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(BlendedRunsOurs)->Name("blend/runs")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(BlendedRunsPixman)->Name("blend/runs/pixman")->Arg(16)->Arg(64)->Arg(360);

// ---- A palette picture of 560 x 480, all noise, moved to each rectangle.

struct Picture {
  Picture() : table(new hsGColorTable), pixels(kPictureWidth * kHeight) {
    std::mt19937 random(3);
    for (uint8_t& p : pixels) p = uint8_t(random());
    for (uint32_t& c : colors) c = uint32_t(random()) | 0xFF000000;
    table->SetCount(256);
    table->SetColors(0, 256, colors);
  }
  ~Picture() { table->UnRef(); }

  static constexpr int kPictureWidth = 560;
  hsGColorTable* table;
  uint32_t colors[256];
  std::vector<uint8_t> pixels;
};

void SpriteOurs(benchmark::State& state) {
  const std::vector<Rect> rects = RandomRects(int(state.range(0)));
  std::vector<uint16_t> pixels = Screen(false);
  const hsGBitmap device = Bitmap(hsGBitmap::kConfig_RGB16, pixels.data(), kWidth, kHeight);
  Picture picture;
  hsGBitmap source = Bitmap(hsGBitmap::kConfig_Index8, picture.pixels.data(), Picture::kPictureWidth, kHeight);
  source.SetColorTable(picture.table);
  for (auto _ : state) {
    for (const Rect& r : rects) {
      hsGSpriteBlitter* sprite = ChooseSpriteBlitter(device, source, r.x, r.y, {0xFFFF, 0, 0, 0}, nullptr);
      sprite->BlitRect(r.y, r.x, r.width, r.height);
      sprite->UnRef();
    }
    benchmark::ClobberMemory();
  }
  CountPixels(state, rects);
}

void SpritePixman(benchmark::State& state) {
  const std::vector<Rect> rects = RandomRects(int(state.range(0)));
  std::vector<uint16_t> pixels = Screen(false);
  const PixmanScreen screen(pixels);
  Picture picture;
  pixman_indexed_t palette{};
  palette.color = 1;
  for (int i = 0; i < 256; ++i) palette.rgba[i] = picture.colors[i];
  pixman_image_t* source =
      pixman_image_create_bits(PIXMAN_c8, Picture::kPictureWidth, kHeight,
                               reinterpret_cast<uint32_t*>(picture.pixels.data()), Picture::kPictureWidth);
  pixman_image_set_indexed(source, &palette);
  for (auto _ : state) {
    for (const Rect& r : rects)
      pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, screen.image, 0, 0, 0, 0, r.x, r.y, r.width, r.height);
    benchmark::ClobberMemory();
  }
  pixman_image_unref(source);
  CountPixels(state, rects);
}

BENCHMARK(SpriteOurs)->Name("sprite8to16")->Arg(16)->Arg(64)->Arg(360);
BENCHMARK(SpritePixman)->Name("sprite8to16/pixman")->Arg(16)->Arg(64)->Arg(360);

}  // namespace
