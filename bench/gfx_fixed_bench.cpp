// The arithmetic that everything is drawn with, and the mapping of points by type of matrix.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "gfx/foundation/hsmatrix.h"

namespace {

constexpr int kCount = 1024;

std::vector<hsFixed> RandomNumbers(unsigned seed, hsFixed limit) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<hsFixed> number(1, limit);
  std::vector<hsFixed> numbers(kCount);
  for (hsFixed& n : numbers) n = random() % 2 ? number(random) : -number(random);
  return numbers;
}

template <hsFixed (*operation)(hsFixed, hsFixed)>
void Arithmetic(benchmark::State& state) {
  const std::vector<hsFixed> a = RandomNumbers(1, 300 * kFixed1), b = RandomNumbers(2, 80 * kFixed1);
  std::vector<hsFixed> out(kCount);
  for (auto _ : state) {
    for (int i = 0; i < kCount; ++i) out[size_t(i)] = operation(a[size_t(i)], b[size_t(i)]);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(Arithmetic<hsFixMul>)->Name("hsFixMul");
BENCHMARK(Arithmetic<hsFixDiv>)->Name("hsFixDiv");
BENCHMARK(Arithmetic<hsMagnitude>)->Name("hsMagnitude");

void MapPoints(benchmark::State& state) {
  const uint32_t type = uint32_t(state.range(0));
  hsMatrix matrix;
  if (type & hsMatrix::kTranslateType) matrix.PostTranslate(10 * kFixed1, -3 * kFixed1);
  if (type & hsMatrix::kScaleType) matrix.fMap[0][0] = matrix.fMap[1][1] = 3 * kFixedHalf;
  if (type & hsMatrix::kAffineType) matrix.fMap[0][1] = matrix.fMap[1][0] = kFixedHalf / 3;
  if (type & hsMatrix::kPerspectiveType) matrix.fMap[2][0] = kFract1 / 5000;
  const std::vector<hsFixed> x = RandomNumbers(3, 700 * kFixed1), y = RandomNumbers(4, 500 * kFixed1);
  std::vector<hsPoint> src(kCount), dst(kCount);
  for (size_t i = 0; i < kCount; ++i) src[i] = {x[i], y[i]};
  for (auto _ : state) {
    matrix.MapPoints(kCount, src.data(), dst.data(), matrix.GetType());
    benchmark::DoNotOptimize(dst.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kCount);
}
BENCHMARK(MapPoints)->ArgName("type")->Arg(0)->Arg(1)->Arg(3)->Arg(7)->Arg(15);

}  // namespace
