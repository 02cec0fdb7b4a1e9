// Vector instructions that not every processor of its kind has. A function with VISTREL_AVX2 in front may use AVX2, and
// is called only where hasAvx2() says so; without the macro there are none. What it does must come to the same as what
// is done elsewhere, which tests try.
#pragma once

// Not for Windows: GCC doesn't align the stack there as registers of 32 bytes want it.
#if defined(__x86_64__) && !defined(_WIN32)
#define VISTREL_AVX2 [[gnu::target("avx2")]]
inline bool hasAvx2() { return __builtin_cpu_supports("avx2"); }
#endif
