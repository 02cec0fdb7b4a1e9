// Devices driven by random sequences: pixels against a model of states, clips and blends, and what a bounder hears.
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
    HSScan::AntiFillPath(&path, nullptr, &coverage);
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
    heard.push_back(rect);
    return skips;
  }
  bool skips;
  std::vector<hsIntRect> heard;
};

struct Scene {
  explicit Scene(Random& random)
      : palette(random, 200),
        config(random.Chance(50) ? hsGBitmap::kConfig_RGB16 : hsGBitmap::kConfig_Index8),
        start(config, kWidth, kHeight, random, &palette),
        picture(hsGBitmap::kConfig_ARGB32, 7, 5, random),
        indices(hsGBitmap::kConfig_Index8, 9, 4, random, &palette) {
    for (Draw& d : draws) d.draw = RandomCall(random, &d.slack);
  }
  ~Scene() { filter->UnRef(); }

  struct Draw {
    int slack;  // how far its pixels may lie outside of what the bounder heard
    std::function<void(hsGRasterDevice*)> draw;
  };
  std::function<void(hsGRasterDevice*)> RandomCall(Random& random, int* slack) {
    auto attr = std::make_shared<hsGAttribute>(uint32_t(random.Below(8)));  // smooth, framed, filtered
    const hsGColor color = RandomColor(random);
    attr->SetColor(&color);
    attr->SetFrameSize(random.Chance(40) ? 0 : random.Between(1, 6) * kFixedHalf);
    // A hairline's pixels reach half a pixel beyond its points, and the bounder hears of one column at the right; its
    // curves bulge farther.
    const bool isHair = attr->FrameSize() == 0;
    if (isHair && (attr->Flags() & hsGAttribute::kFrame)) *slack = kWidth;
    attr->SetCapJoin(uint32_t(random.Below(16)));
    if (random.Chance(20)) attr->SetMaskFilter(filter);
    const hsPath path = RandomShape(random, true);
    const hsPoint a = NearPoint(random), b = NearPoint(random);
    const hsRect rect = Around(a, b);
    const hsGBitmap& bitmap = random.Chance(50) ? picture.bitmap : indices.bitmap;
    hsMatrix change;
    change.SetRotate(random.Between(-10, 10) * kFixed1, kWidth / 2 * kFixed1, kHeight / 2 * kFixed1);
    switch (random.Below(9)) {
      case 0: return [=](hsGRasterDevice* d) { d->ConcatMatrix(change); };
      case 1: return [=](hsGRasterDevice* d) { d->Translate(a.fX / 8, a.fY / 8); };
      case 2:
        if (isHair) *slack = 1;
        return [=](hsGRasterDevice* d) { d->DrawLine(&a, &b, attr.get()); };
      case 3:
        attr->SetFlags(attr->Flags() & ~uint32_t{hsGAttribute::kFrame});
        return [=](hsGRasterDevice* d) { d->DrawRect(&rect, attr.get()); };
      case 4: return [=](hsGRasterDevice* d) { d->DrawOval(&rect, attr.get()); };
      case 5: return [=](hsGRasterDevice* d) { d->DrawPath(&path, attr.get()); };
      case 6: return [=, &bitmap](hsGRasterDevice* d) { d->DrawBitmap(&bitmap, a.fX, a.fY, attr.get()); };
      case 7: return [=, &bitmap](hsGRasterDevice* d) { d->CopyBitmap(&bitmap, a.fX, a.fY, attr.get()); };
      default: return [=](hsGRasterDevice* d) { d->DrawFull(attr.get()); };
    }
  }

  SpreadFilter* filter = new SpreadFilter;
  Palette palette;
  uint8_t config;
  Surface start, picture, indices;
  std::vector<Draw> draws{40};
};

TEST(Device, ABounderHearsOfEveryPixelAndItsVetoHolds) {
  ThrowOnHalt halt;
  Random random(62);
  for (int i = 0; i < 60; ++i) {
    const Scene scene(random);
    Surface plain(scene.start), heard(scene.start), vetoed(scene.start);
    hsGRasterDevice alone, listened, skipped;
    alone.SetBitmap(&plain.bitmap);
    listened.SetBitmap(&heard.bitmap);
    skipped.SetBitmap(&vetoed.bitmap);
    const auto listener = hsMake<Listener>(false);
    const auto skipper = hsMake<Listener>(true);
    listened.SetBounder(listener.get());
    skipped.SetBounder(skipper.get());
    for (size_t n = 0; n < scene.draws.size(); ++n) {
      const Surface before(heard);
      const int slack = scene.draws[n].slack;
      listener->heard.clear();
      for (hsGRasterDevice* device : {&alone, &listened, &skipped}) scene.draws[n].draw(device);
      ASSERT_EQ(plain, heard) << i << " at " << n;
      for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
          if (before.Get(x, y) == heard.Get(x, y)) continue;
          ASSERT_TRUE(std::any_of(
              listener->heard.begin(), listener->heard.end(),
              [&](const hsIntRect& r) {
                return hsIntRect{r.fLeft - slack, r.fTop - slack, r.fRight + slack, r.fBottom + slack}.Contains(x, y);
              }))
              << i << " at " << n << ": " << x << "," << y;
        }
      ASSERT_EQ(vetoed, scene.start);
    }
  }
}

}  // namespace
