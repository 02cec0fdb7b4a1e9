#include "gfx/vector/hsmonotone.h"

#include <algorithm>

#include "gfx/foundation/hscubic.h"
#include "gfx/foundation/hsdebug.h"

int32_t hsChopQuadMonotone(const hsPoint quad[3], hsPoint pieces[5]) {
  if (!hsCubic::ChopQuadAtYExtrema(quad, pieces + 1)) {
    std::copy_n(quad, 3, pieces);
    return 1;
  }
  pieces[0] = quad[0];
  pieces[4] = quad[2];
  return 2;
}

int32_t hsChopCubicMonotone(const hsPoint cubic[4], hsPoint pieces[10]) {
  const int splits = hsCubic::ChopCubicAtYExtrema(cubic, pieces + 1);
  if (!hsAssert(splits >= 0 && splits <= 2, "bad splitcount") || splits == 0) {
    std::copy_n(cubic, 4, pieces);
    return 1;
  }
  pieces[0] = cubic[0];
  pieces[3 * splits + 3] = cubic[3];
  return splits + 1;
}
