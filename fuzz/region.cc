// Regions by random operations, beside bitmaps of their pixels.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "choices.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/regionmodel.h"

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

struct Both {
  hsRegion region;
  PixelModel pixels;
};

hsIntRect rectangle(Choices& choices) {
  const int left = int(choices.below(kModelSize)), top = int(choices.below(kModelSize));
  return {left, top, std::min(left + 1 + int(choices.below(kModelSize)), kModelSize),
          std::min(top + 1 + int(choices.below(kModelSize)), kModelSize)};
}

PixelModel pixelsOf(const hsIntRect& r) {
  PixelModel pixels;
  pixels.Fill(r);
  return pixels;
}

PixelModel intersection(const PixelModel& a, const PixelModel& b) {
  return PixelModel::Of(a, b, [](uint64_t l, uint64_t r) { return l & r; });
}

void combine(Both& into, const Both& a, const Both& b, uint32_t operation) {
  into.pixels = PixelModel::Of(a.pixels, b.pixels, [&](uint64_t l, uint64_t r) {
    return operation == 0 ? l | r : operation == 1 ? l & r : operation == 2 ? l & ~r : l ^ r;
  });
  switch (operation) {
    case 0: into.region.Union(a.region, b.region); break;
    case 1: into.region.Intersect(a.region, b.region); break;
    case 2: into.region.Difference(a.region, b.region); break;
    default: into.region.Xor(a.region, b.region); break;
  }
}

// There and back, as far as runs reach and beyond.
void translate(Both& both, Choices& choices) {
  const int dx = int(choices.below(40000)) - 20000, dy = int(choices.below(300)) - 150;
  hsRegion moved;
  both.region.Translate(dx, dy, &moved);
  moved.Contains(dx + 3, dy + 3);
  if (!moved.Validate()) return;  // out of the range of runs
  moved.Translate(-dx, -dy);
  check(moved == both.region);
  hsRegion taken(std::move(moved));
  both.region = std::move(taken);
}

// A triangle or a rectangle of whole pixels, as a path.
void setPath(Both& both, Choices& choices) {
  hsPath path;
  const hsIntRect r = rectangle(choices);
  const int op = choices.below(2) ? hsRegion::kIntersectPath : hsRegion::kReplacePath;
  path.MoveTo(hsIntToFixed(r.fLeft), hsIntToFixed(r.fTop));
  path.LineTo(hsIntToFixed(r.fRight), hsIntToFixed(r.fTop));
  path.LineTo(hsIntToFixed(r.fRight), hsIntToFixed(r.fBottom));
  PixelModel filled;
  if (choices.below(2)) {
    path.LineTo(hsIntToFixed(r.fLeft), hsIntToFixed(r.fBottom));
    path.Close();
    filled = pixelsOf(r);
  } else {
    hsRegion alone;
    alone.SetPath(path);
    for (hsRegionRectIter iter(alone); !iter.IsDone(); iter.Next()) filled.Fill(iter.Rect());
    check(intersection(filled, pixelsOf(r)) == filled);
  }
  both.region.SetPath(path, op);
  both.pixels = op == hsRegion::kIntersectPath ? intersection(both.pixels, filled) : filled;
}

// What a region answers about a rectangle.
void ask(const Both& both, Choices& choices) {
  hsIntRect bounds;
  check(both.region.GetBounds(&bounds) == both.region.IsRect() && bounds == both.region.Bounds());
  const hsIntRect r = rectangle(choices);
  const PixelModel all = pixelsOf(r), within = intersection(both.pixels, all);
  check(both.region.Contains(r.fLeft, r.fTop) == both.pixels.At(r.fLeft, r.fTop));
  check(both.region.Contains(r) == (within == all));
  check(both.region.Intersects(r) == !(within == PixelModel()));

  PixelBlitter cut, span;
  both.region.Blit(r, &cut);
  check(cut.drawn == within && !cut.twice);
  both.region.BlitClipped(r.fTop, r.fLeft, r.fRight, &span);
  check(span.drawn == intersection(both.pixels, pixelsOf({r.fLeft, r.fTop, r.fRight, r.fTop + 1})));

  PixelModel found;
  for (hsRegionClipRectIter iter(both.region, r); !iter.IsDone(); iter.Next()) found.Fill(iter.Rect());
  check(found == within);
}

// By each of the iterators, and as runs that are given to another region.
void walk(const Both& both) {
  PixelModel found, forward, backward;
  hsRegionBuilder builder;
  for (hsRegionRectIter iter(both.region); !iter.IsDone(); iter.Next()) found.Fill(iter.Rect());
  check(found == both.pixels);
  if (both.region.IsRect()) return;
  int32_t y, left, right;
  for (hsRegionRowIter iter(both.region); iter.Next(&y, &left, &right);) {
    forward.Fill({left, y, right, y + 1});
    builder.BlitH(y, left, 1);
    if (right - left > 1) builder.BlitH(y, left + 1, right - left - 1);
  }
  for (hsRegionReverseRowIter iter(both.region); iter.Next(&y, &left, &right);) backward.Fill({left, y, right, y + 1});
  check(forward == both.pixels && backward == both.pixels);
  int32_t count;
  const int16_t* runs = builder.Finish(&count);
  check(hsRegion(count, runs) == both.region);
  check(hsRegion(count - 1, runs).IsEmpty());  // without their end they are no runs
}

// Any numbers as runs: they are refused, or make a region that holds together.
void setRuns(Choices& choices) {
  constexpr int16_t kOften[] = {0, 1, 2, 3, 5, 9, hsRegion::kRunTypeSentinel, hsRegion::kRunTypeSentinel};
  std::array<int16_t, 24> runs;
  for (int16_t& run : runs) run = choices.oneIn(9) ? int16_t(choices.word()) : choices.pick(kOften);
  hsRegion region;
  region.SetRuns(int32_t(choices.below(uint32_t(runs.size()) + 1)), runs.data());
  check(region.Validate());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  hsSetHaltProc([] {});  // runs that are malformed, or beyond their range, are reported
  Choices choices(data, size);
  std::array<Both, 3> all;
  for (int i = 0; !choices.isEmpty() && i < 40; ++i) {
    Both& into = choices.pick(all);
    switch (choices.below(8)) {
      case 0:
      case 1: combine(into, choices.pick(all), choices.pick(all), choices.below(4)); break;
      case 2: translate(into, choices); break;
      case 3: setPath(into, choices); break;
      case 4: ask(into, choices); break;
      case 5: setRuns(choices); break;
      default: {
        const hsIntRect r = rectangle(choices);
        combine(into, into, {hsRegion(r), pixelsOf(r)}, choices.below(4));
      }
    }
    check(into.region.Validate() && into.region == into.pixels.Region());
  }
  for (const Both& each : all) walk(each);
  return 0;
}
