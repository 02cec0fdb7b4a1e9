// Paths of random lines and curves: filled, framed and as regions they touch the pixels that their geometry says,
// inside their clip.
#include <cstdlib>

#include "choices.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/scanmodel.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

// Quarters of pixels, on the model's bitmap and a little around it.
hsPoint point(Choices& choices) {
  const auto coordinate = [&] {
    return hsFixed(int32_t(choices.byte()) * 5 / 16 * kFixed1 - 8 * kFixed1 + choices.below(4) * kFixed1 / 4);
  };
  const hsFixed x = coordinate();
  return {x, coordinate()};
}

hsPath pathOf(Choices& choices, bool* curved) {
  hsPath path(choices.below(2) ? hsPath::kEvenOddFill : 0);
  for (uint32_t contours = 1 + choices.below(3); contours > 0; --contours) {
    path.MoveTo(point(choices));
    for (uint32_t segments = 1 + choices.below(8); segments > 0; --segments) {
      const hsPoint a = point(choices), b = point(choices), c = point(choices);
      switch (choices.below(4)) {
        case 0: path.QuadTo(a, b), *curved = true; break;
        case 1: path.CubicTo(a, b, c), *curved = true; break;
        default: path.LineTo(a);
      }
    }
    if (choices.below(2)) path.Close();
  }
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Choices choices(data, size);
  bool curved = false;
  const hsPath path = pathOf(choices, &curved);
  const hsRegion bitmap(hsIntRect{0, 0, kModelSize, kModelSize});

  PixelBlitter filled;
  HSScan::FillPath(&path, &bitmap, &filled);
  check(!filled.twice && filled.ordered);
  const Outline outline(path, true);
  const double doubtful = curved ? 1.5 : 0.01;
  for (int y = 0; y < kModelSize; ++y)
    for (int x = 0; x < kModelSize; ++x)
      if (outline.DistanceTo(CentreOf(x, y)) > doubtful)
        check(filled.drawn.At(x, y) == outline.Contains(CentreOf(x, y)));

  hsRegion region;
  region.SetPath(path);
  region.Intersect(region, bitmap);
  check(region == filled.drawn.Region());

  const int radius = 1 + int(choices.below(12));
  hsPath stroke;
  HSScan::StrokePath(&path, radius * kFixed1 / 2, (1 + hsFixed(choices.below(8))) * kFixed1, choices.below(9), &stroke);
  PixelBlitter framed, smooth, hair;
  HSScan::FillPath(&stroke, &bitmap, &framed);
  HSScan::AntiFillPath(&stroke, &bitmap, &smooth);
  HSScan::HairPath(&path, &bitmap, &hair);
  const Outline line(path, false);
  for (int y = 0; y < kModelSize; ++y)
    for (int x = 0; x < kModelSize; ++x)
      if (hair.drawn.At(x, y)) check(line.DistanceTo(CentreOf(x, y)) < 2.5);
  return 0;
}
