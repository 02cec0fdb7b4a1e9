// Integer roots. All round down.
#pragma once

#include <cstdint>

#include "gfx/foundation/hstypes.h"

uint32_t hsSqrt64(uint64_t x);
uint32_t hsSqrt32(uint32_t x);
uint32_t hsCubeRoot32(uint32_t x);
// Of the low 63 bits.
uint32_t hsCubeRoot63(uint64_t x);

// The bits of x are taken as unsigned, 0 to just under 4.0.
hsFract hsFractSqrt(hsFract x);
// Keeps the sign of x.
hsFract hsFractCubeRoot(hsFract x);
