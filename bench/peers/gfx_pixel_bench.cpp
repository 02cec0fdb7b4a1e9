// Solid and blended rectangles and palette sprites on a 720 x 480 screen of 16 bits, beside pixman's fills and
// composites of the same rectangles onto r5g6b5. Both sides keep their paint and picture from call to call, as a
// program that draws would; what each draws on a new screen is compared before any is timed. pixman is at home in 32
// bits, so those are timed as well.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "gfx/foundation/hsref.h"
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

// Sixty-four that are nearly squares of so many pixels each.
std::vector<Rect> RectsOfPixels(int pixels) {
  const int width = int(std::sqrt(pixels)), height = pixels / width;
  std::mt19937 random(1);
  std::vector<Rect> rects;
  for (int i = 0; i < 64; ++i)
    rects.push_back(
        {int(random() % unsigned(kWidth - width + 1)), int(random() % unsigned(kHeight - height + 1)), width, height});
  return rects;
}

// A screen of random pixels, or of runs as drawn pages have them, as ours has it: six bits of red, five of green and
// blue.
std::vector<uint16_t> Screen(bool runs) {
  std::mt19937 random(2);
  std::vector<uint16_t> pixels(kWidth * kHeight);
  for (size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = runs && random() % 16 ? (i ? pixels[i - 1] : uint16_t(0)) : uint16_t(random());
  return pixels;
}

// The same colours as pixman has them, in five, six and five bits.
std::vector<uint16_t> PixmanScreen(bool runs) {
  std::vector<uint16_t> pixels = Screen(runs);
  for (uint16_t& p : pixels) {
    const int green = p >> 5 & 31;
    p = uint16_t((p >> 11) << 11 | (green << 1 | green >> 4) << 5 | (p & 31));
  }
  return pixels;
}

// And in eight bits each.
std::vector<uint32_t> PixmanScreen32(bool runs) {
  const auto widen = [](uint32_t channel) { return (channel & 31) << 3 | (channel >> 2 & 7); };
  std::vector<uint32_t> wide;
  for (const uint16_t p : Screen(runs)) wide.push_back(widen(p >> 11) << 16 | widen(p >> 5) << 8 | widen(p));
  return wide;
}

// Red, green and blue of pixman's pixels in five bits.
std::array<int, 3> Channels(uint16_t p) { return {p >> 11, p >> 6 & 31, p & 31}; }
std::array<int, 3> Channels(uint32_t p) { return {int(p >> 19 & 31), int(p >> 11 & 31), int(p >> 3 & 31)}; }

// Whether no channel of a pixel is further from the other's than rounding explains: two steps of five bits.
template <class Pixel>
bool Alike(const std::vector<uint16_t>& ours, const std::vector<Pixel>& pixmans) {
  const auto close = [](int a, int b) { return std::abs(a - b) <= 2; };
  for (size_t i = 0; i < ours.size(); ++i) {
    const auto [r, g, b] = Channels(pixmans[i]);
    if (!close(ours[i] >> 11, r) || !close(ours[i] >> 5 & 31, g) || !close(ours[i] & 31, b)) return false;
  }
  return true;
}

hsGBitmap Bitmap(uint8_t config, void* pixels, int width, int height) {
  hsGBitmap bitmap(config);
  bitmap.fImage = pixels;
  bitmap.fWidth = uint32_t(width);
  bitmap.fHeight = uint32_t(height);
  bitmap.fRowBytes = uint32_t(width) * bitmap.fPixelSize / 8;
  return bitmap;
}

hsGBitmap ScreenBitmap(std::vector<uint16_t>& pixels) {
  return Bitmap(hsGBitmap::kConfig_RGB16, pixels.data(), kWidth, kHeight);
}

class PixmanImage {
 public:
  explicit PixmanImage(std::vector<uint16_t>& pixels)
      : PixmanImage(pixman_image_create_bits(PIXMAN_r5g6b5, kWidth, kHeight, reinterpret_cast<uint32_t*>(pixels.data()),
                                             kWidth * 2)) {}
  explicit PixmanImage(std::vector<uint32_t>& pixels)
      : PixmanImage(pixman_image_create_bits(PIXMAN_x8r8g8b8, kWidth, kHeight, pixels.data(), kWidth * 4)) {}
  explicit PixmanImage(pixman_image_t* made) : image(made) {}
  ~PixmanImage() { pixman_image_unref(image); }
  PixmanImage(const PixmanImage&) = delete;
  PixmanImage& operator=(const PixmanImage&) = delete;
  pixman_image_t* const image;
};

// ---- Painters: made for a screen, they draw one rectangle of it.

// alpha 0xFFFF stores, anything below blends.
template <uint16_t alpha>
class OurRects {
 public:
  explicit OurRects(std::vector<uint16_t>& pixels) : device_(ScreenBitmap(pixels)) {
    attr_.SetColor(alpha, 0x3000, 0x9000, 0xE000);
  }
  void Draw(const Rect& r) {
    hsGBlitter* blitter = attr_.GetBlitter(device_, 0, hsMatrix());
    blitter->BlitRect(r.y, r.x, r.width, r.height);
    blitter->UnRef();
  }

 private:
  const hsGBitmap device_;
  hsGAttribute attr_;
};

class PixmanSolid {
 public:
  template <class Pixel>
  explicit PixmanSolid(std::vector<Pixel>& pixels)
      : pixels_(reinterpret_cast<uint32_t*>(pixels.data())),
        bits_(8 * sizeof(Pixel)),
        value_(sizeof(Pixel) == 2 ? 0x349C : 0x3090E0) {}
  void Draw(const Rect& r) { pixman_fill(pixels_, kWidth * bits_ / 32, bits_, r.x, r.y, r.width, r.height, value_); }

 private:
  uint32_t* const pixels_;
  const int bits_;
  const uint32_t value_;
};

class PixmanBlend {
 public:
  template <class Pixel>
  explicit PixmanBlend(std::vector<Pixel>& pixels) : screen_(pixels) {}
  void Draw(const Rect& r) {
    pixman_image_composite32(PIXMAN_OP_OVER, source_.image, nullptr, screen_.image, 0, 0, 0, 0, r.x, r.y, r.width,
                             r.height);
  }

 private:
  static constexpr pixman_color_t kColor{0x1800, 0x4800, 0x7000, 0x8000};  // premultiplied
  const PixmanImage screen_, source_{pixman_image_create_solid_fill(&kColor)};
};

// A palette picture of 560 x 480, all noise.
struct Picture {
  Picture() : pixels(kPictureWidth * kHeight) {
    std::mt19937 random(3);
    for (uint8_t& p : pixels) p = uint8_t(random());
    for (uint32_t& c : colors) c = uint32_t(random()) | 0xFF000000;
  }

  static constexpr int kPictureWidth = 560;
  uint32_t colors[256];
  std::vector<uint8_t> pixels;
};

// Moves the picture to each rectangle.
class OurSprites {
 public:
  explicit OurSprites(std::vector<uint16_t>& pixels) : device_(ScreenBitmap(pixels)) {
    table_->SetCount(256);
    table_->SetColors(0, 256, picture_.colors);
    source_.SetColorTable(table_.get());
  }
  void Draw(const Rect& r) {
    hsGSpriteBlitter* sprite = ChooseSpriteBlitter(device_, source_, r.x, r.y, {0xFFFF, 0, 0, 0}, nullptr);
    sprite->BlitRect(r.y, r.x, r.width, r.height);
    sprite->UnRef();
  }

 private:
  const hsGBitmap device_;
  Picture picture_;
  const hsRef<hsGColorTable> table_ = hsAdopt(new hsGColorTable);
  hsGBitmap source_ = Bitmap(hsGBitmap::kConfig_Index8, picture_.pixels.data(), Picture::kPictureWidth, kHeight);
};

class PixmanSprites {
 public:
  template <class Pixel>
  explicit PixmanSprites(std::vector<Pixel>& pixels) : screen_(pixels) {
    palette_.color = 1;
    std::copy(std::begin(picture_.colors), std::end(picture_.colors), palette_.rgba);
    pixman_image_set_indexed(source_.image, &palette_);
  }
  void Draw(const Rect& r) {
    pixman_image_composite32(PIXMAN_OP_SRC, source_.image, nullptr, screen_.image, 0, 0, 0, 0, r.x, r.y, r.width,
                             r.height);
  }

 private:
  const PixmanImage screen_;
  Picture picture_;
  pixman_indexed_t palette_{};
  const PixmanImage source_{pixman_image_create_bits(PIXMAN_c8, Picture::kPictureWidth, kHeight,
                                                     reinterpret_cast<uint32_t*>(picture_.pixels.data()),
                                                     Picture::kPictureWidth)};
};

// ---- range(0): the usual side of a rectangle.

template <class Painter, class Pixel>
void DrawOnce(std::vector<Pixel>& pixels, const std::vector<Rect>& rects) {
  Painter painter(pixels);
  for (const Rect& r : rects) painter.Draw(r);
}

template <class Painter, class Pixel>
void Time(benchmark::State& state, std::vector<Pixel> pixels, const std::vector<Rect>& rects) {
  Painter painter(pixels);
  for (auto _ : state) {
    for (const Rect& r : rects) painter.Draw(r);
    benchmark::ClobberMemory();
  }
  int64_t drawn = 0;
  for (const Rect& r : rects) drawn += int64_t{r.width} * r.height;
  state.SetItemsProcessed(state.iterations() * drawn);
}

template <class Ours, class Pixmans>
void Register(const std::string& name, bool runs) {
  const auto sizes = [](benchmark::internal::Benchmark* bench) { bench->Arg(16)->Arg(64)->Arg(360); };
  benchmark::RegisterBenchmark(name.c_str(), [runs](benchmark::State& state) {
    Time<Ours>(state, Screen(runs), RandomRects(int(state.range(0))));
  })->Apply(sizes);
  const auto pixmans = [runs](auto screen) {
    return [=](benchmark::State& state) {
      const std::vector<Rect> rects = RandomRects(int(state.range(0)));
      std::vector<uint16_t> ours = Screen(runs);
      auto drawn = screen(runs);
      DrawOnce<Ours>(ours, rects);
      DrawOnce<Pixmans>(drawn, rects);
      if (!Alike(ours, drawn)) return state.SkipWithError("the pictures differ");
      Time<Pixmans>(state, screen(runs), rects);
    };
  };
  benchmark::RegisterBenchmark((name + "/pixman").c_str(), pixmans(PixmanScreen))->Apply(sizes);
  benchmark::RegisterBenchmark((name + "/pixman32").c_str(), pixmans(PixmanScreen32))->Apply(sizes);
  // How the cost grows: range(0) pixels a rectangle.
  benchmark::RegisterBenchmark(
      ("growth/" + name).c_str(),
      [runs](benchmark::State& state) { Time<Ours>(state, Screen(runs), RectsOfPixels(int(state.range(0)))); })
      ->Arg(240)
      ->Arg(2400)
      ->Arg(24000);
}

const bool kRegistered = [] {
  Register<OurRects<0xFFFF>, PixmanSolid>("solid", false);
  Register<OurRects<0x8000>, PixmanBlend>("blend/noise", false);
  Register<OurRects<0x8000>, PixmanBlend>("blend/runs", true);
  Register<OurSprites, PixmanSprites>("sprite8to16", false);
  return true;
}();

}  // namespace
