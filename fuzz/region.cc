// Regions by random operations, beside bitmaps of their pixels.
#include <array>
#include <cstdlib>

#include "choices.h"
#include "gfx/vector/regionmodel.h"

namespace {

struct Both {
  hsRegion region;
  PixelModel pixels;

  void check() const {
    if (!region.Validate() || !(region == pixels.Region())) std::abort();
  }
};

hsIntRect rectangle(Choices& choices) {
  const int left = int(choices.below(kModelSize)), top = int(choices.below(kModelSize));
  return {left, top, std::min(left + 1 + int(choices.below(kModelSize)), kModelSize),
          std::min(top + 1 + int(choices.below(kModelSize)), kModelSize)};
}

void combine(Both& into, const Both& a, const Both& b, uint32_t operation) {
  const PixelModel left = a.pixels, right = b.pixels;
  switch (operation) {
    case 0: into.region.Union(a.region, b.region); break;
    case 1: into.region.Intersect(a.region, b.region); break;
    case 2: into.region.Difference(a.region, b.region); break;
    default: into.region.Xor(a.region, b.region); break;
  }
  into.pixels = PixelModel::Where([&](int x, int y) {
    const bool l = left.At(x, y), r = right.At(x, y);
    switch (operation) {
      case 0: return l || r;
      case 1: return l && r;
      case 2: return l && !r;
      default: return l != r;
    }
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  std::array<Both, 3> all;
  for (int i = 0; !choices.isEmpty() && i < 40; ++i) {
    Both& into = choices.pick(all);
    if (choices.oneIn(3)) {
      combine(into, choices.pick(all), choices.pick(all), choices.below(4));
    } else {
      const hsIntRect r = rectangle(choices);
      Both other;
      other.region.SetRect(r);
      other.pixels.Fill(r);
      combine(into, into, other, choices.below(4));
    }
    into.check();
  }
  for (const Both& each : all) {
    PixelModel found;
    for (hsRegionRectIter iter(each.region); !iter.IsDone(); iter.Next()) found.Fill(iter.Rect());
    if (!(found == each.pixels)) std::abort();
  }
  return 0;
}
