// Region operators beside pixman's, on unions of N random rectangles of a 720 x 480 screen. Both sides work on the same
// operands and keep making their result anew.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <random>
#include <vector>

#include "gfx/vector/hsregion.h"

namespace {

constexpr int kSmall = 24;
int UsualSize(int count) { return count > 500 ? kSmall : 60; }

// Of sides up to `size`.
std::vector<hsIntRect> RandomRects(unsigned seed, int count, int size) {
  std::mt19937 random(seed);
  std::vector<hsIntRect> rects;
  for (int i = 0; i < count; ++i) {
    const int x = int(random() % 700), y = int(random() % 460);
    rects.push_back({x, y, x + 1 + int(random() % unsigned(size)), y + 1 + int(random() % unsigned(size))});
  }
  return rects;
}

hsRegion Ours(unsigned seed, int count, int size) {
  hsRegion region;
  for (const hsIntRect& r : RandomRects(seed, count, size)) region.Union(region, r);
  return region;
}

class Pixman {
 public:
  Pixman() { pixman_region32_init(&region); }
  ~Pixman() { pixman_region32_fini(&region); }
  Pixman(unsigned seed, int count) : Pixman() {
    for (const hsIntRect& r : RandomRects(seed, count, UsualSize(count)))
      pixman_region32_union_rect(&region, &region, r.fLeft, r.fTop, unsigned(r.Width()), unsigned(r.Height()));
  }
  pixman_region32_t region;
};

void UnionOurs(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Union(a, b); }
void IntersectOurs(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Intersect(a, b); }
void DifferenceOurs(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Difference(a, b); }

template <void (*operation)(hsRegion*, const hsRegion&, const hsRegion&), bool allSmall>
void BenchOurs(benchmark::State& state) {
  const int count = int(state.range(0)), size = allSmall ? kSmall : UsualSize(count);
  const hsRegion a = Ours(1, count, size), b = Ours(2, count, size);
  hsRegion out;
  for (auto _ : state) {
    operation(&out, a, b);
    benchmark::DoNotOptimize(out.Runs());
  }
}

template <pixman_bool_t (*operation)(pixman_region32_t*, const pixman_region32_t*, const pixman_region32_t*)>
void BenchPixman(benchmark::State& state) {
  Pixman a(1, int(state.range(0))), b(2, int(state.range(0))), out;
  for (auto _ : state) {
    operation(&out.region, &a.region, &b.region);
    benchmark::DoNotOptimize(out.region.data);
  }
}

BENCHMARK_TEMPLATE(BenchOurs, UnionOurs, false)->Name("union")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<pixman_region32_union>)->Name("union/pixman")->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, IntersectOurs, false)->Name("intersect")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<pixman_region32_intersect>)->Name("intersect/pixman")->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, DifferenceOurs, false)->Name("difference")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<pixman_region32_subtract>)->Name("difference/pixman")->Arg(100)->Arg(1000);

// Building a region rectangle by rectangle, as a screen gathers what has changed.
template <bool allSmall>
void GatherOurs(benchmark::State& state) {
  const int count = int(state.range(0)), size = allSmall ? kSmall : UsualSize(count);
  for (auto _ : state) benchmark::DoNotOptimize(Ours(3, count, size).Runs());
}
void GatherPixman(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(Pixman(3, int(state.range(0))).region.data);
}
BENCHMARK_TEMPLATE(GatherOurs, false)->Name("gather")->Arg(100)->Arg(1000);
BENCHMARK(GatherPixman)->Name("gather/pixman")->Arg(100)->Arg(1000);

// How the cost grows: rectangles of the same sizes, more of them.
BENCHMARK_TEMPLATE(BenchOurs, UnionOurs, true)->Name("small/union")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, IntersectOurs, true)->Name("small/intersect")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, DifferenceOurs, true)->Name("small/difference")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(GatherOurs, true)->Name("small/gather")->Arg(10)->Arg(100)->Arg(1000);

}  // namespace
