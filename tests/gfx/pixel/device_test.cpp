// Devices driven by random sequences: pixels against a model of states, clips and blends, and what its bounder is
// called with.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

#include "gfx/halt.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/pixel/spreadfilter.h"
#include "gfx/vector/coverageblitter.h"
#include "gfx/vector/hsscan.h"

namespace {

constexpr int kWidth = 48, kHeight = 32;

hsScalar Near(Random& random, int size) { return hsScalar(random.Between(-8 * 256, (size + 8) * 256)) << 8; }
hsPoint NearPoint(Random& random) {
  const hsScalar x = Near(random, kWidth);
  return {x, Near(random, kHeight)};
}

hsRect Around(const hsPoint& a, const hsPoint& b) {
  return {std::min(a.fX, b.fX), std::min(a.fY, b.fY), std::max(a.fX, b.fX), std::max(a.fY, b.fY)};
}

hsPath RandomShape(Random& random, bool curves) {
  hsPath path;
  path.MoveTo(NearPoint(random));
  for (int i = random.Between(2, 5); i > 0; --i) {
    const hsPoint a = NearPoint(random), b = NearPoint(random);
    if (curves && random.Chance(50)) {
      path.QuadTo(a, b);
    } else {
      path.LineTo(a);
    }
  }
  path.Close();
  return path;
}

hsGColor RandomColor(Random& random) {
  return {uint16_t(random.Chance(40) ? 0xFFFF : random.Byte() * 257), uint16_t(random.engine()),
          uint16_t(random.engine()), uint16_t(random.engine())};
}

// ---- Pixels

// States of a device that are plain lists, and pixels that are set one by one.
struct Model {
  struct State {
    hsMatrix matrix;
    std::vector<hsPath> clips;
  };

  explicit Model(const Surface& start) : surface(start) {}

  hsMatrix Total() const {
    hsMatrix total = states.back().matrix;
    total.PostTranslate(-origin.fX * kFixed1, -origin.fY * kFixed1);
    return total;
  }
  bool Allows(int x, int y) const {
    if (user && !user->Contains(x, y)) return false;
    for (const CoverageBlitter& inside : masks)
      if (inside.covered[y][x] == 0) return false;
    return true;
  }
  // Around all pixels that may be drawn on.
  hsRegion AllowedBounds() {
    MakeMasks();
    hsIntRect bounds{kWidth, kHeight, 0, 0};
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x)
        if (Allows(x, y))
          bounds = {std::min(bounds.fLeft, x), std::min(bounds.fTop, y), std::max(bounds.fRight, x + 1),
                    std::max(bounds.fBottom, y + 1)};
    return bounds.IsEmpty() ? hsRegion() : hsRegion(bounds);
  }
  // The masks of all clips of all states; a clip knows nothing of the origin.
  void MakeMasks() {
    masks.clear();
    for (const State& state : states)
      for (const hsPath& path : state.clips) {
        HSScan::FillPath(&path, nullptr, &masks.emplace_back());
      }
  }
  void Draw(const CoverageBlitter& coverage, const hsGColor& color, bool smooth) {
    MakeMasks();
    const int a = color.fA >> 8, r5 = color.fR >> 11, g5 = color.fG >> 11, b5 = color.fB >> 11;
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) {
        const int c = coverage.covered[y][x];
        if (c == 0 || !Allows(x, y)) continue;
        const Channels d = Split16(surface.Get(x, y));
        const int v = smooth ? c * (a + 1) / 256 : a;
        if (smooth && v == 0) continue;
        surface.Set(x, y,
                    !smooth && a == 255
                        ? Join16(color.fR >> 10, g5, b5)
                        : Join16(Blend(r5 * 2, d.r, v + 1), Blend(g5, d.g, v + 1), Blend(b5, d.b, v + 1)));
      }
  }

  Surface surface;
  hsIntPoint origin{0, 0};
  const hsRegion* user = nullptr;
  std::vector<State> states{1};
  std::vector<CoverageBlitter> masks;
};

// One step of both: a change of state, or a fill.
void Step(Random& random, hsGRasterDevice* device, Model* model, const hsRegion& user, hsGAttribute* attr) {
  Model::State& top = model->states.back();
  switch (random.Below(11)) {
    case 0:
      device->Save();
      model->states.push_back({top.matrix, {}});
      return;
    case 1:
      if (model->states.size() == 1) return;
      device->Restore();
      model->states.pop_back();
      return;
    case 2: {
      hsMatrix change;
      if (random.Chance(60)) {
        change.SetTranslate(random.Between(-512, 512) << 8, random.Between(-512, 512) << 8);
      } else if (random.Chance(50)) {
        change.SetScale(random.Between(200, 300) << 8, random.Between(200, 300) << 8, 0, 0);
      } else {
        change.SetRotate(random.Between(-20, 20) * kFixed1, kWidth / 2 * kFixed1, kHeight / 2 * kFixed1);
      }
      device->ConcatMatrix(change);
      top.matrix.SetConcat(top.matrix, change);
      return;
    }
    case 3: {
      hsPath path = RandomShape(random, random.Chance(30));
      device->ClipPath(path);
      path.Transform(&top.matrix);
      top.clips.push_back(path);
      return;
    }
    case 4:
      model->origin = {random.Between(-3, 3), random.Between(-3, 3)};
      device->SetOrigin(model->origin.fX, model->origin.fY);
      return;
    case 5:
      model->user = random.Chance(50) ? &user : nullptr;
      device->SetClipRgn(model->user);
      return;
    default: break;
  }
  const hsGColor color = RandomColor(random);
  attr->SetColor(&color);
  const hsMatrix total = model->Total();
  CoverageBlitter coverage;
  if (random.Chance(20)) {
    attr->SetFlags(0);
    device->DrawFull(attr);
    std::fill_n(coverage.covered[0], sizeof coverage.covered, 255);
    return model->Draw(coverage, color, false);
  }
  if (random.Chance(30)) {
    const hsPoint a = NearPoint(random), b = NearPoint(random);
    const hsRect rect = Around(a, b);
    attr->SetFlags(0);
    device->DrawRect(&rect, attr);
    hsPoint corners[4];
    rect.ToQuad(corners);
    total.MapPoints(4, corners, corners);
    if (total.GetType() & hsMatrix::kAffineType) {
      HSScan::FillQuad(corners, nullptr, &coverage);
    } else {
      hsRect mapped;
      mapped.Set(4, corners);
      HSScan::FillRect(&mapped, nullptr, &coverage, false);
    }
    return model->Draw(coverage, color, false);
  }
  const bool smooth = random.Chance(40);
  hsPath path = RandomShape(random, random.Chance(50));
  attr->SetFlags(smooth ? hsGAttribute::kAntiAlias : 0u);
  device->DrawPath(&path, attr);
  path.Transform(&total);
  if (smooth) {
    // A span that a clip begins within a pixel counts one less there than one that comes from further left.
    const hsRegion clip = model->AllowedBounds();
    HSScan::AntiFillPath(&path, &clip, &coverage);
  } else {
    HSScan::FillPath(&path, nullptr, &coverage);
  }
  model->Draw(coverage, color, smooth);
}

TEST(Device, RandomSequencesAgreeWithAModelOfStatesAndPixels) {
  ThrowOnHalt halt;
  Random random(61);
  for (int sequence = 0; sequence < 60; ++sequence) {
    const Surface start(hsGBitmap::kConfig_RGB16, kWidth, kHeight, random);
    Surface drawn(start);
    Model model(start);
    const hsRegion user = RandomRegion(random, start.Bounds());
    hsGAttribute attr;
    hsGRasterDevice device;
    device.SetBitmap(&drawn.bitmap);
    for (int step = 0; step < 60; ++step) {
      Step(random, &device, &model, user, &attr);
      ASSERT_EQ(drawn, model.surface) << sequence << " at " << step;
    }
  }
}

// ---- Bounds

struct Listener : hsGBounder {
  explicit Listener(bool skips) : skips(skips) {}
  bool BoundRect(const hsIntRect& rect, const hsRegion*) override {
    rects.push_back(rect);
    return skips;
  }
  bool skips;
  std::vector<hsIntRect> rects;
};

// What one call draws, and with what paint.
struct Drawing {
  Drawing(Random& random, const hsGBitmap& bitmap, SpreadFilter* filter)
      : attr(uint32_t(random.Below(8))),  // smooth, framed, filtered
        bitmap(bitmap),
        path(RandomShape(random, true)),
        ends{NearPoint(random), NearPoint(random)},
        rect(Around(ends[0], ends[1])) {
    const hsGColor color = RandomColor(random);
    attr.SetColor(&color);
    attr.SetFrameSize(random.Chance(40) ? 0 : random.Between(1, 6) * kFixedHalf);
    attr.SetCapJoin(uint32_t(random.Below(16)));
    if (random.Chance(20)) attr.SetMaskFilter(filter);
  }
  hsGAttribute attr;
  const hsGBitmap& bitmap;
  hsPath path;
  hsPoint ends[2];
  hsRect rect;
};

const std::function<void(hsGRasterDevice*, Drawing&)> kCalls[] = {
    [](hsGRasterDevice* d, Drawing& o) { d->DrawLine(&o.ends[0], &o.ends[1], &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->DrawRect(&o.rect, &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->DrawOval(&o.rect, &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->DrawPath(&o.path, &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->DrawBitmap(&o.bitmap, o.ends[0].fX, o.ends[0].fY, &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->CopyBitmap(&o.bitmap, o.ends[0].fX, o.ends[0].fY, &o.attr); },
    [](hsGRasterDevice* d, Drawing& o) { d->DrawFull(&o.attr); },
};

TEST(Device, ABounderLearnsOfEveryPixelAndItsVetoHolds) {
  ThrowOnHalt halt;
  Random random(62);
  const Palette palette(random, 200);
  const Surface picture(hsGBitmap::kConfig_ARGB32, 7, 5, random);
  const Surface indices(hsGBitmap::kConfig_Index8, 9, 4, random, &palette);
  const auto filter = hsMake<SpreadFilter>();
  for (int i = 0; i < 2400; ++i) {
    const Surface start(random.Chance(50) ? hsGBitmap::kConfig_RGB16 : hsGBitmap::kConfig_Index8, kWidth, kHeight,
                        random, &palette);
    Surface surfaces[] = {start, start, start};
    const hsRef<Listener> listeners[] = {nullptr, hsMake<Listener>(false), hsMake<Listener>(true)};
    Drawing drawing(random, random.Chance(50) ? picture.bitmap : indices.bitmap, filter.get());
    const size_t call = size_t(random.Below(int(std::size(kCalls))));
    if (call == 1) drawing.attr.SetFlags(drawing.attr.Flags() & ~uint32_t{hsGAttribute::kFrame});
    hsMatrix matrix;
    if (random.Chance(70)) matrix.SetRotate(random.Between(-90, 90) * kFixed1, kWidth / 2 << 16, kHeight / 2 << 16);
    for (int k = 0; k < 3; ++k) {
      hsGRasterDevice device;
      device.SetBitmap(&surfaces[k].bitmap);
      device.SetBounder(listeners[k].get());
      device.ConcatMatrix(matrix);
      kCalls[call](&device, drawing);
    }
    // A hairline's pixels reach half a pixel beyond its points, and the bounder gets one column at the right; its
    // curves bulge farther.
    const bool isHair = drawing.attr.FrameSize() == 0;
    const int slack = !isHair ? 0 : drawing.attr.Flags() & hsGAttribute::kFrame ? kWidth : call == 0;
    const auto covers = [&](int x, int y) {
      return std::any_of(listeners[1]->rects.begin(), listeners[1]->rects.end(), [&](const hsIntRect& r) {
        return hsIntRect{r.fLeft - slack, r.fTop - slack, r.fRight + slack, r.fBottom + slack}.Contains(x, y);
      });
    };
    int differences = 0;
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x) {
        ASSERT_TRUE(surfaces[1].Get(x, y) == start.Get(x, y) || covers(x, y)) << i << ": " << x << "," << y;
        differences += surfaces[0].Get(x, y) != surfaces[1].Get(x, y);
      }
    // Lines and rectangles go as paths where there is a bounder, and smooth edges of those are others.
    const bool smooth = drawing.attr.Flags() & hsGAttribute::kAntiAlias;
    ASSERT_LE(differences, call > 1 ? 0 : smooth ? 2 * (kWidth + kHeight) : 2) << i << " by " << call;
    ASSERT_EQ(surfaces[2], start) << i;
  }
}

}  // namespace
