// Integer roots, which all round down, and the 64-bit quotient that the wider divisions share.
#pragma once

#include <cstdint>

#include "gfx/foundation/hstypes.h"

// To nearest, halves away from zero. By zero it reports "Math overflow" or "Math underflow" and returns the largest
// number of the dividend's sign.
int64_t hsDivide64(int64_t dividend, int32_t divisor);

uint32_t hsSqrt64(uint64_t x);
uint32_t hsSqrt32(uint32_t x);
uint32_t hsCubeRoot32(uint32_t x);
// Of the low 63 bits.
uint32_t hsCubeRoot63(uint64_t x);

// The bits of x are taken as unsigned, 0 to just under 4.0.
hsFract hsFractSqrt(hsFract x);
// Keeps the sign of x.
hsFract hsFractCubeRoot(hsFract x);
