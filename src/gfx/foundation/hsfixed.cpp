#include "gfx/foundation/hsfixed.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmath.h"

namespace {

// At most 2^31.5, so it may pass an int32_t.
uint32_t Length(int32_t x, int32_t y) {
  const uint64_t squares = uint64_t(int64_t{x} * x) + uint64_t(int64_t{y} * y);
  return hsSqrt64(squares);
}

}  // namespace

int32_t hsMathOverflow(int64_t value) {
  hsDebugMessage("Math overflow", 0);
  return hsSaturate(value);
}

hsFract hsFracDiv(int32_t a, int32_t b) { return hsAsLong(hsDivide64(int64_t{a} << 30, b)); }

int32_t hsMulDiv(int32_t a, int32_t b, int32_t c) { return hsAsLong(hsDivide64(int64_t{a} * b, c)); }

int32_t hsMagnitude(int32_t x, int32_t y) { return hsAsLong(Length(x, y)); }

int32_t hsMagnitudeSat(int32_t x, int32_t y) { return hsSaturate(Length(x, y)); }
