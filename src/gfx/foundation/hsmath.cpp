#include "gfx/foundation/hsmath.h"

#include <cmath>

#include "gfx/foundation/hsdebug.h"

namespace {

// One digit of a cube root: root grows by a bit, rest is what remains of the three-bit groups taken so far.
inline void CubeStep(uint64_t& rest, uint64_t& root) {
  root <<= 1;
  const uint64_t trial = 3 * root * (root + 1);  // (root + 1)^3 - root^3 - 1
  if (rest > trial) {
    rest -= trial + 1;
    ++root;
  }
}

}  // namespace

int64_t hsDivide64(int64_t dividend, int32_t divisor) {
  if (divisor == 0) {
    hsDebugMessage(dividend < 0 ? "Math underflow" : "Math overflow", 0);
    return dividend < 0 ? int64_t{-0x7FFFFFFF} * 0x100000000 : INT64_MAX;
  }
  const bool negative = (dividend < 0) != (divisor < 0);
  const uint64_t magnitude = dividend < 0 ? 0 - uint64_t(dividend) : uint64_t(dividend);
  const uint32_t by = hsMagnitude32(divisor);
  const uint64_t quotient = (magnitude + (by >> 1)) / by;
  return int64_t(negative ? 0 - quotient : quotient);
}

uint32_t hsSqrt64(uint64_t x) {
  // The processor's root is off by at most one either way once x passes 53 bits; the two loops make it exact.
  uint64_t root = uint64_t(std::sqrt(double(x)));
  if (root > 0xFFFFFFFF) root = 0xFFFFFFFF;
  while (root * root > x) --root;
  while (root < 0xFFFFFFFF && (root + 1) * (root + 1) <= x) ++root;
  return uint32_t(root);
}

uint32_t hsSqrt32(uint32_t x) { return uint32_t(std::sqrt(double(x))); }

uint32_t hsCubeRoot63(uint64_t x) {
  uint64_t rest = 0, root = 0;
  for (int shift = 60; shift >= 0; shift -= 3) {
    rest = rest << 3 | (x >> shift & 7);
    CubeStep(rest, root);
  }
  return uint32_t(root);
}

uint32_t hsCubeRoot32(uint32_t x) { return hsCubeRoot63(x); }

hsFract hsFractSqrt(hsFract x) { return hsFract(hsSqrt64(uint64_t{uint32_t(x)} << 30)); }

hsFract hsFractCubeRoot(hsFract x) {
  const uint64_t bits = hsMagnitude32(x);
  uint64_t rest = 0, root = 0;
  for (int step = 0; step < 31; ++step) {  // the groups of x << 60, 93 bits
    const int shift = 30 - 3 * step;
    rest = rest << 3 | (shift >= 0 ? bits >> shift & 7 : 0);
    CubeStep(rest, root);
  }
  return hsWithSign(uint32_t(root), x < 0);
}
