#include "gfx/pixel/hsgcolortable.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"

namespace {

constexpr uint32_t kCubeLevels[] = {0, 51, 102, 153, 204, 255};

constexpr hsGColor32 Opaque(uint32_t r, uint32_t g, uint32_t b) { return hsMakeColor32(255, r, g, b); }

constexpr int32_t Squared(int32_t v) { return v * v; }

}  // namespace

hsGColorTable::hsGColorTable(const uint8_t inverse[]) : fFixedInverse(true), fInverse(new uint8_t[kInverseSize]) {
  std::copy_n(inverse, kInverseSize, fInverse.get());
}

void hsGColorTable::SetCount(uint32_t count) {
  if (count > kMaxCount) {
    hsStatusMessage("bad count for ColorTable", int32_t(count));
    count = kMaxCount;
  }
  if (count == fCount) return;
  fCount = count;
  fColors.fill(0);
  ForgetInverse();
}

void hsGColorTable::SetColors(uint32_t start, uint32_t count, const hsGColor32 colors[]) {
  const bool fits = uint64_t{start} + count <= fCount;
  if (!hsAssert(fits, "bad params in ColorTable::SetColors")) {
    if (start >= fCount) return;
    count = fCount - start;
  }
  std::copy_n(colors, count, fColors.begin() + start);
  ForgetInverse();
}

const hsGColor32* hsGColorTable::IndexToColor(uint32_t index) const {
  return hsAssert(index < fCount, "bad IndexToColor param") ? &fColors[index] : nullptr;
}

bool hsGColorTable::Equal(const hsGColorTable* a, const hsGColorTable* b) {
  if (a == b) return true;
  return a && b && a->fCount == b->fCount &&
         std::equal(a->fColors.begin(), a->fColors.begin() + a->fCount, b->fColors.begin());
}

const uint8_t* hsGColorTable::BuildInverse() const {
  fInverse = std::make_unique<uint8_t[]>(kInverseSize);
  for (int32_t cell = 0; cell < kInverseSize; ++cell) {
    const int32_t r = 17 * (cell >> 8), g = 17 * (cell >> 4 & 15), b = 17 * (cell & 15);
    int32_t best = INT32_MAX;
    for (uint32_t i = 0; i < fCount; ++i) {
      const hsGColor32 c = fColors[i];
      const int32_t distance = Squared(int32_t(hsColor32R(c)) - r) + Squared(int32_t(hsColor32G(c)) - g) +
                               Squared(int32_t(hsColor32B(c)) - b);
      if (distance >= best) continue;
      best = distance;
      fInverse[cell] = uint8_t(i);
    }
  }
  return fInverse.get();
}

void hsGColorTable::ForgetInverse() {
  if (!fFixedInverse) fInverse.reset();
}

void hsGColorTable::SetDefaultCube() {
  SetCount(kMaxCount);
  uint32_t n = 0;
  for (uint32_t r : kCubeLevels)
    for (uint32_t g : kCubeLevels)
      for (uint32_t b : kCubeLevels) fColors[n++] = Opaque(r, g, b);
  for (uint32_t v : {25u, 76u, 127u, 178u, 229u})
    for (hsGColor32 c :
         {Opaque(v, 0, 0), Opaque(0, v, 0), Opaque(0, 0, v), Opaque(v, v, 0), Opaque(v, 0, v), Opaque(0, v, v)})
      fColors[n++] = c;
  for (uint32_t base : {0u, 51u, 102u, 153u, 204u})
    for (uint32_t v : {base + 17, base + 34}) fColors[n++] = Opaque(v, v, v);
  (void)hsAssert(n == kMaxCount, "bad table");
  ForgetInverse();
}

void hsGColorTable::SetDefault332() {
  static constexpr uint32_t kLevels[] = {0, 36, 73, 109, 146, 182, 219, 255};
  SetCount(kMaxCount);
  for (uint32_t i = 0; i < 64; ++i)
    for (uint32_t k = 0; k < 4; ++k) fColors[i * 4 + k] = Opaque(kLevels[i >> 3], kLevels[i & 7], k * 85);
  if (!fInverse) fInverse = std::make_unique<uint8_t[]>(kInverseSize);
  for (uint32_t v = 0; v < kInverseSize; ++v) fInverse[v] = uint8_t(v >> 9 << 5 | (v >> 5 & 7) << 2 | (v >> 2 & 3));
}
