#include "t2k/crossingsort.h"

namespace {

bool SamePlace(Crossing a, Crossing b) { return a >> kKindBits == b >> kKindBits; }

}  // namespace

bool SortCrossings(Crossing* c, int count) {
  for (int i = 1; i < count; ++i) {
    const Crossing moving = c[i];
    int j = i;
    for (; j > 0 && c[j - 1] > moving; --j) c[j] = c[j - 1];
    c[j] = moving;
  }
  if (count & 1) return false;
  Crossing opposite = kRisingKinds;
  for (int i = 0; i < count; i += 2) opposite &= c[i] ^ c[i + 1];
  return opposite != 0;
}

bool IsUndecided(const Crossing* c, int count) {
  int winding = 0;
  for (int i = 0; i + 1 < count; ++i) {
    if (SamePlace(c[i], c[i + 1]) && c[i] != c[i + 1]) {
      const bool more = (i > 0 && SamePlace(c[i - 1], c[i])) || (i + 2 < count && SamePlace(c[i + 1], c[i + 2]));
      if (more || winding == 1 || winding == -1) return true;
    }
    winding += c[i] & kRisingKinds ? 1 : -1;
  }
  return false;
}

int StrikeLine(tsiMemObject* mem, Crossing* line, int count) {
  int winding = 0, left = 0;
  bool strikeNext = false;
  for (int i = 0; i < count; ++i) {
    winding += line[i] & kRisingKinds ? 1 : -1;
    const bool inside = winding > 1 || winding < -1;
    if (!inside && !strikeNext) line[left++] = line[i];
    strikeNext = inside;
  }
  tsi_Assert(mem, winding == 0);
  return left;
}
