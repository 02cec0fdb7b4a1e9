// Scan conversion beside Cairo's image backend: the same shapes on 720 x 480 pixels of 16 bits, an opaque colour.
// Both sides keep their path built and fill it again and again; ours with the blitters that a paint of that colour has.
// Anti-aliased, both take four rows of four samples a pixel, which is Cairo's fast way. Its own pixels have 32 bits;
// what it takes to fill those is timed as well.
#include <benchmark/benchmark.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <random>

#include "gfx/foundation/hsref.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"

namespace {

constexpr int kWidth = 720, kHeight = 480;
constexpr double kPi = 3.14159265358979;

hsPoint At(double x, double y) { return {hsScalar(std::lround(x * 65536)), hsScalar(std::lround(y * 65536))}; }

hsPath Star(int points, double x, double y, double radius, double inner) {
  hsPath path;
  for (int i = 0; i < 2 * points; ++i) {
    const double angle = kPi * i / points, r = i % 2 ? inner : radius;
    const hsPoint p = At(x + r * std::sin(angle), y - r * std::cos(angle));
    i == 0 ? path.MoveTo(p) : path.LineTo(p);
  }
  path.Close();
  return path;
}

hsPath Triangles(int count, double size) {
  std::mt19937 random(7);
  hsPath path;
  for (int i = 0; i < count; ++i) {
    const double x = random() % 7000 / 10.0, y = random() % 4600 / 10.0;
    path.MoveTo(At(x, y));
    path.LineTo(At(x + size, y + size / 3));
    path.LineTo(At(x + size / 4, y + size));
    path.Close();
  }
  return path;
}

// Crosses itself all over the screen.
hsPath Scribble(int count) {
  std::mt19937 random(11);
  hsPath path(hsPath::kEvenOddFill);
  for (int i = 0; i < count; ++i) {
    const hsPoint p = At(10 + random() % 7000 / 10.0, 10 + random() % 4600 / 10.0);
    i == 0 ? path.MoveTo(p) : path.LineTo(p);
  }
  path.Close();
  return path;
}

hsPath Circle(double radius) {
  hsPath path;
  path.AddCircle(At(360, 0).fX, At(0, 240).fY, At(radius, 0).fX);
  return path;
}

// Beside and below each other.
hsPath Circles(int count) {
  hsPath path;
  for (int i = 0; i < count; ++i) path.AddCircle(At(35 + i % 10 * 70, 0).fX, At(0, 24 + i / 10 * 48).fY, At(20, 0).fX);
  return path;
}

// What a page's text is made of: small shapes with curves and a hole.
hsPath Letters(int count) {
  hsPath path;
  for (int i = 0; i < count; ++i) {
    const double x = 20 + i % 30 * 22, y = 20 + i / 30 * 44;
    const hsPoint a = At(x, y), b = At(x + 17.3, y + 28.6), c = At(x + 4.2, y + 3.4), d = At(x + 13.1, y + 25.2);
    const hsRect outer{a.fX, a.fY, b.fX, b.fY}, inner{c.fX, c.fY, d.fX, d.fY};
    path.AddOval(&outer);
    path.AddOval(&inner, true);
  }
  return path;
}

hsPath Blob() {
  hsPath path;
  path.MoveTo(At(60, 240));
  path.CurveTo(At(60, 20), At(300, -60), At(360, 120));
  path.CurveTo(At(420, 300), At(700, 100), At(660, 300));
  path.CurveTo(At(620, 500), At(400, 460), At(330, 360));
  path.CurveTo(At(260, 260), At(60, 460), At(60, 240));
  path.Close();
  return path;
}

// A ring of so many waves.
hsPath Waves(int count) {
  const auto on = [count](double wave, double radius) {
    const double angle = 2 * kPi * wave / count;
    return At(360 + radius * std::sin(angle), 240 - radius * std::cos(angle));
  };
  hsPath path;
  path.MoveTo(on(0, 180));
  for (int i = 0; i < count; ++i) path.CurveTo(on(i + 0.33, 230), on(i + 0.67, 130), on(i + 1, 180));
  path.Close();
  return path;
}

const hsPath& Shape(int index) {
  static const hsPath kShapes[] = {
      Star(12, 360, 240, 230, 140), Triangles(200, 30), Scribble(40), Circle(220), Letters(300), Blob()};
  return kShapes[index];
}

// Shape(index), made of more and more.
hsPath ShapeOf(int index, int count) {
  switch (index) {
    case 0: return Star(count, 360, 240, 230, 140);
    case 1: return Triangles(count, 30);
    case 2: return Scribble(count);
    case 3: return Circles(count);
    case 4: return Letters(count);
    default: return Waves(count);
  }
}
constexpr const char* kNames[] = {"star", "triangles", "scribble", "circle", "letters", "blob"};
constexpr int kFewest[] = {12, 20, 4, 1, 3, 5};  // of which growing shapes are made
constexpr int kShapeCount = 6;

void ToCairo(const hsPath& path, cairo_t* cairo) {
  hsPathIter iter(path, false);
  hsPoint p[4];
  const auto x = [&](int i) { return p[i].fX / 65536.0; };
  const auto y = [&](int i) { return p[i].fY / 65536.0; };
  for (hsPath::Verb verb; (verb = iter.Next(p)) != hsPath::kDoneVerb;) {
    if (verb == hsPath::kMoveVerb) cairo_move_to(cairo, x(0), y(0));
    if (verb == hsPath::kLineVerb) cairo_line_to(cairo, x(1), y(1));
    if (verb == hsPath::kQuadVerb)
      cairo_curve_to(cairo, (x(0) + 2 * x(1)) / 3, (y(0) + 2 * y(1)) / 3, (x(2) + 2 * x(1)) / 3, (y(2) + 2 * y(1)) / 3,
                     x(2), y(2));
    if (verb == hsPath::kCurveVerb) cairo_curve_to(cairo, x(1), y(1), x(2), y(2), x(3), y(3));
    if (verb == hsPath::kCloseVerb) cairo_close_path(cairo);
  }
  const bool evenOdd = path.FillType() == hsPath::kEvenOddFill;
  cairo_set_fill_rule(cairo, evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
}

// Both sides begin with black.
template <class Pixel>
void CountPixels(benchmark::State& state, const void* pixels, int stride = kWidth * int{sizeof(Pixel)}) {
  int inked = 0;
  for (int y = 0; y < kHeight; ++y) {
    const auto* const row = reinterpret_cast<const Pixel*>(static_cast<const uint8_t*>(pixels) + y * stride);
    inked += int(kWidth - std::count(row, row + kWidth, Pixel{0}));
  }
  state.counters["inked"] = inked;
}

class Cairo {
 public:
  Cairo(cairo_format_t format, cairo_antialias_t antialias)
      : surface(cairo_image_surface_create(format, kWidth, kHeight), cairo_surface_destroy),
        cairo(cairo_create(surface.get()), cairo_destroy) {
    cairo_set_antialias(cairo.get(), antialias);
    cairo_set_source_rgb(cairo.get(), 1, 0.5, 0);
  }
  operator cairo_t*() { return cairo.get(); }
  void CountInked(benchmark::State& state) {
    cairo_surface_flush(surface.get());
    const auto count = cairo_image_surface_get_format(surface.get()) == CAIRO_FORMAT_RGB16_565 ? CountPixels<uint16_t>
                                                                                               : CountPixels<uint32_t>;
    count(state, cairo_image_surface_get_data(surface.get()), cairo_image_surface_get_stride(surface.get()));
  }

 private:
  std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface;
  std::unique_ptr<cairo_t, void (*)(cairo_t*)> cairo;
};

class Screen {
 public:
  explicit Screen(bool antiAlias) : pixels_(size_t(kWidth * kHeight)), bitmap_(hsGBitmap::kConfig_RGB16) {
    bitmap_.fImage = pixels_.data();
    bitmap_.fWidth = kWidth;
    bitmap_.fHeight = kHeight;
    bitmap_.fRowBytes = kWidth * 2;
    paint_.SetColor(0xFFFF, 0xFFFF, 0x8000, 0);
    blitter_ = hsAdopt(paint_.GetBlitter(bitmap_, antiAlias ? kMask_Alpha : kMask_Bit, hsMatrix()));
  }
  hsGBlitter* Blitter() { return blitter_.get(); }
  const uint16_t* Pixels() const { return pixels_.data(); }

 private:
  std::vector<uint16_t> pixels_;
  hsGBitmap bitmap_;
  hsGAttribute paint_;
  hsRef<hsGBlitter> blitter_;
};

const hsRegion kScreen(hsIntRect{0, 0, kWidth, kHeight});

void FillOurs(benchmark::State& state, const hsPath& path, bool antiAlias) {
  Screen screen(antiAlias);
  for (auto _ : state) {
    if (antiAlias)
      HSScan::AntiFillPath(&path, &kScreen, screen.Blitter());
    else
      HSScan::FillPath(&path, &kScreen, screen.Blitter());
    benchmark::ClobberMemory();
  }
  CountPixels<uint16_t>(state, screen.Pixels());
}

void FillCairo(benchmark::State& state, cairo_format_t format, const hsPath& path, bool antiAlias) {
  Cairo cairo(format, antiAlias ? CAIRO_ANTIALIAS_FAST : CAIRO_ANTIALIAS_NONE);
  ToCairo(path, cairo);
  for (auto _ : state) cairo_fill_preserve(cairo);
  cairo.CountInked(state);
}

void StrokeOurs(benchmark::State& state, const hsPath& path, double width, bool antiAlias) {
  Screen screen(antiAlias);
  for (auto _ : state) {
    hsPath outline;
    HSScan::StrokePath(&path, At(width / 2, 0).fX, At(4, 0).fX, HSScan::kRoundJoin | HSScan::kRoundCap, &outline);
    if (antiAlias)
      HSScan::AntiFillPath(&outline, &kScreen, screen.Blitter());
    else
      HSScan::FillPath(&outline, &kScreen, screen.Blitter());
    benchmark::ClobberMemory();
  }
  CountPixels<uint16_t>(state, screen.Pixels());
}

void StrokeCairo(benchmark::State& state, cairo_format_t format, const hsPath& path, double width, bool antiAlias) {
  Cairo cairo(format, antiAlias ? CAIRO_ANTIALIAS_FAST : CAIRO_ANTIALIAS_NONE);
  ToCairo(path, cairo);
  cairo_set_line_width(cairo, width);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
  for (auto _ : state) cairo_stroke_preserve(cairo);
  cairo.CountInked(state);
}

void HairOurs(benchmark::State& state, const hsPath& path) {
  Screen screen(false);
  for (auto _ : state) {
    HSScan::HairPath(&path, &kScreen, screen.Blitter());
    benchmark::ClobberMemory();
  }
  CountPixels<uint16_t>(state, screen.Pixels());
}

// A pixel wide, with the joins and caps that cost least.
void HairCairo(benchmark::State& state, cairo_format_t format, const hsPath& path) {
  Cairo cairo(format, CAIRO_ANTIALIAS_NONE);
  ToCairo(path, cairo);
  cairo_set_line_width(cairo, 1);
  cairo_set_line_join(cairo, CAIRO_LINE_JOIN_BEVEL);
  for (auto _ : state) cairo_stroke_preserve(cairo);
  cairo.CountInked(state);
}

// Fewest, ten and a hundred times as many.
void RegisterGrowth(const std::string& name, int shape, void (*run)(benchmark::State&, const hsPath&)) {
  auto* const bench =
      benchmark::RegisterBenchmark(("growth/" + name + "/" + kNames[shape]).c_str(),
                                   [=](benchmark::State& state) { run(state, ShapeOf(shape, int(state.range(0)))); });
  for (const int times : {1, 10, 100}) bench->Arg(kFewest[shape] * times);
  bench->Unit(benchmark::kMicrosecond);
}

void Register(const std::string& name, const std::function<void(benchmark::State&)>& ours,
              const std::function<void(benchmark::State&, cairo_format_t)>& cairos) {
  benchmark::RegisterBenchmark(name.c_str(), ours)->Unit(benchmark::kMicrosecond);
  const auto cairoIn = [cairos](cairo_format_t format) {
    return [=](benchmark::State& state) { cairos(state, format); };
  };
  benchmark::RegisterBenchmark((name + "/cairo").c_str(), cairoIn(CAIRO_FORMAT_RGB16_565))
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark((name + "/cairo32").c_str(), cairoIn(CAIRO_FORMAT_RGB24))->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
  for (const bool antiAlias : {false, true})
    for (int i = 0; i < kShapeCount; ++i)
      Register(
          std::string(antiAlias ? "antifill/" : "fill/") + kNames[i],
          [=](benchmark::State& state) { FillOurs(state, Shape(i), antiAlias); },
          [=](benchmark::State& state, cairo_format_t format) { FillCairo(state, format, Shape(i), antiAlias); });
  for (const int i : {0, 2, 3, 5}) {
    for (const bool antiAlias : {false, true})
      Register(
          std::string(antiAlias ? "antistroke/" : "stroke/") + kNames[i],
          [=](benchmark::State& state) { StrokeOurs(state, Shape(i), 6, antiAlias); },
          [=](benchmark::State& state, cairo_format_t format) { StrokeCairo(state, format, Shape(i), 6, antiAlias); });
    Register(
        std::string("hair/") + kNames[i], [=](benchmark::State& state) { HairOurs(state, Shape(i)); },
        [=](benchmark::State& state, cairo_format_t format) { HairCairo(state, format, Shape(i)); });
  }
  for (int i = 0; i < kShapeCount; ++i) {
    RegisterGrowth("fill", i, [](benchmark::State& state, const hsPath& path) { FillOurs(state, path, false); });
    RegisterGrowth("antifill", i, [](benchmark::State& state, const hsPath& path) { FillOurs(state, path, true); });
  }
  for (const int i : {0, 2, 3, 5}) {
    RegisterGrowth("stroke", i, [](benchmark::State& state, const hsPath& path) { StrokeOurs(state, path, 6, false); });
    RegisterGrowth("antistroke", i,
                   [](benchmark::State& state, const hsPath& path) { StrokeOurs(state, path, 6, true); });
    RegisterGrowth("hair", i, HairOurs);
  }
  return true;
}();

}  // namespace
