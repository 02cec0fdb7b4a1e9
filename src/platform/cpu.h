// Vector instructions that not every processor of its kind has. A function with VISTREL_AVX2 in front may use AVX2, and
// is called only where hasAvx2() says so. What it does must come to the same without, which tests try.
#pragma once

#if defined(__x86_64__)
#define VISTREL_AVX2 [[gnu::target("avx2")]]
inline bool hasAvx2() { return __builtin_cpu_supports("avx2"); }
#else
constexpr bool hasAvx2() { return false; }
#endif
