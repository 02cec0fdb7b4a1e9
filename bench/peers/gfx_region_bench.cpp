// Region operators beside pixman's, on unions of N random rectangles of a 720 x 480 screen. Both sides work on the same
// operands and keep making their result anew; the results are compared before any is timed.
#include <benchmark/benchmark.h>
#include <pixman.h>

#include <random>
#include <vector>

#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsregioniter.h"

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
  Pixman(unsigned seed, int count, int size) : Pixman() {
    for (const hsIntRect& r : RandomRects(seed, count, size))
      pixman_region32_union_rect(&region, &region, r.fLeft, r.fTop, unsigned(r.Width()), unsigned(r.Height()));
  }
  pixman_region32_t region;
};

// Both store a region as bands of spans, those of neighbouring rows that are equal as one.
bool AreEqual(const hsRegion& ours, const pixman_region32_t& pixmans) {
  int count = 0;
  const pixman_box32_t* box = pixman_region32_rectangles(const_cast<pixman_region32_t*>(&pixmans), &count);
  for (hsRegionRectIter iter(ours); !iter.IsDone(); iter.Next(), ++box, --count) {
    const hsIntRect& r = iter.Rect();
    if (count == 0 || r != hsIntRect{box->x1, box->y1, box->x2, box->y2}) return false;
  }
  return count == 0;
}

struct Union {
  static void Ours(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Union(a, b); }
  static constexpr auto kPixmans = pixman_region32_union;
};
struct Intersection {
  static void Ours(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Intersect(a, b); }
  static constexpr auto kPixmans = pixman_region32_intersect;
};
struct Difference {
  static void Ours(hsRegion* out, const hsRegion& a, const hsRegion& b) { out->Difference(a, b); }
  static constexpr auto kPixmans = pixman_region32_subtract;
};

template <class Operation>
bool AgreeOn(int count, int size) {
  hsRegion ours;
  Operation::Ours(&ours, Ours(1, count, size), Ours(2, count, size));
  Pixman a(1, count, size), b(2, count, size), pixmans;
  Operation::kPixmans(&pixmans.region, &a.region, &b.region);
  return AreEqual(ours, pixmans.region);
}

template <class Operation, bool allSmall = false>
void BenchOurs(benchmark::State& state) {
  const int count = int(state.range(0)), size = allSmall ? kSmall : UsualSize(count);
  if (!AgreeOn<Operation>(count, size)) return state.SkipWithError("the regions differ");
  const hsRegion a = Ours(1, count, size), b = Ours(2, count, size);
  hsRegion out;
  for (auto _ : state) {
    Operation::Ours(&out, a, b);
    benchmark::DoNotOptimize(out.Runs());
  }
}

template <class Operation>
void BenchPixman(benchmark::State& state) {
  const int count = int(state.range(0)), size = UsualSize(count);
  Pixman a(1, count, size), b(2, count, size), out;
  for (auto _ : state) {
    Operation::kPixmans(&out.region, &a.region, &b.region);
    benchmark::DoNotOptimize(out.region.data);
  }
}

BENCHMARK(BenchOurs<Union>)->Name("union")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<Union>)->Name("union/pixman")->Arg(100)->Arg(1000);
BENCHMARK(BenchOurs<Intersection>)->Name("intersect")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<Intersection>)->Name("intersect/pixman")->Arg(100)->Arg(1000);
BENCHMARK(BenchOurs<Difference>)->Name("difference")->Arg(100)->Arg(1000);
BENCHMARK(BenchPixman<Difference>)->Name("difference/pixman")->Arg(100)->Arg(1000);

// Building a region rectangle by rectangle, as a screen gathers what has changed.
template <bool allSmall = false>
void GatherOurs(benchmark::State& state) {
  const int count = int(state.range(0)), size = allSmall ? kSmall : UsualSize(count);
  if (!AreEqual(Ours(3, count, size), Pixman(3, count, size).region)) return state.SkipWithError("the regions differ");
  for (auto _ : state) benchmark::DoNotOptimize(Ours(3, count, size).Runs());
}
void GatherPixman(benchmark::State& state) {
  const int count = int(state.range(0)), size = UsualSize(count);
  for (auto _ : state) benchmark::DoNotOptimize(Pixman(3, count, size).region.data);
}
BENCHMARK(GatherOurs<>)->Name("gather")->Arg(100)->Arg(1000);
BENCHMARK(GatherPixman)->Name("gather/pixman")->Arg(100)->Arg(1000);

// How the cost grows: rectangles of the same sizes, more of them.
BENCHMARK_TEMPLATE(BenchOurs, Union, true)->Name("small/union")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, Intersection, true)->Name("small/intersect")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_TEMPLATE(BenchOurs, Difference, true)->Name("small/difference")->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK(GatherOurs<true>)->Name("small/gather")->Arg(10)->Arg(100)->Arg(1000);

}  // namespace
