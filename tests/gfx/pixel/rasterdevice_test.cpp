// Raster devices one by one: states, targets and their sizes, the cursor, scrolling, path effects.
#include "gfx/pixel/hsgrasterdevice.h"

#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgcursor.h"
#include "gfx/pixel/hsglayer.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/vector/hsgpatheffect.h"

namespace {

constexpr hsGColor kBlack = {0xFFFF, 0, 0, 0}, kWhite = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};

hsRect Fixed(int l, int t, int r, int b) { return {l * kFixed1, t * kFixed1, r * kFixed1, b * kFixed1}; }

struct DeviceOn : hsGRasterDevice {
  explicit DeviceOn(const Surface& surface) { SetBitmap(&surface.bitmap); }
};

struct Counter : hsGBounder {
  bool BoundRect(const hsIntRect& rect, const hsRegion*) override {
    last = rect;
    return ++count, false;
  }
  int count = 0;
  hsIntRect last{0, 0, 0, 0};
};

TEST(RasterDevice, RowsOfWholeWordsAndSizesThatFit) {
  hsGRasterDevice device;
  hsGBitmap bitmap;
  const auto rowBytes = [&] {
    device.GetBitmap(&bitmap);
    return bitmap.fRowBytes;
  };
  const hsIntRect ten{5, 6, 15, 16}, reversed{9, 9, 2, 12}, wide{INT32_MIN, 0, INT32_MAX, 1};
  device.SetSize(10, 10, hsGBitmap::kConfig_RGB24, nullptr);
  EXPECT_EQ(rowBytes(), 20u);  // two bytes a pixel, where bounds count three
  device.SetBounds(&ten, hsGBitmap::kConfig_RGB24);
  EXPECT_EQ(rowBytes(), 32u);
  hsIntPoint origin;
  device.GetOrigin(&origin);
  EXPECT_EQ(origin, (hsIntPoint{5, 6}));
  device.SetBounds(&reversed, hsGBitmap::kConfig_RGB16);
  device.GetBitmap(&bitmap);
  EXPECT_EQ(bitmap.fWidth, 0u);
  device.EraseColor(kWhite);

  device.SetBounds(&ten, hsGBitmap::kConfig_Index8);
  EXPECT_EQ(rowBytes(), 12u);
  EXPECT_EQ(bitmap.fColorTable->GetCount(), 256u);
  hsGBitmap narrow(hsGBitmap::kConfig_RGB16);
  narrow.fWidth = 10;
  narrow.fHeight = 2;
  narrow.fRowBytes = 19;
  EXPECT_EQ(ReportOf([&] { device.SetBounds(nullptr, hsGBitmap::kConfig_RGB16); }).substr(0, 25),
            "Assert Failed nil bounds ");
  EXPECT_EQ(ReportOf([&] { device.SetBounds(&wide, hsGBitmap::kConfig_RGB16); }), "bad param: 0");
  EXPECT_EQ(ReportOf([&] { device.SetSize(0x40000000, 1, hsGBitmap::kConfig_ARGB32, nullptr); }), "bad param: 0");
  EXPECT_EQ(ReportOf([&] { device.SetSize(65536, 65536, hsGBitmap::kConfig_RGB16, nullptr); }), "bad param: 0");
  EXPECT_EQ(ReportOf([&] { device.SetBitmap(&narrow); }), "bad param: 0");
  EXPECT_EQ(rowBytes(), 12u) << "what is refused changes nothing";

  Random random(8);
  Surface own(hsGBitmap::kConfig_RGB16, 4, 4, random);
  device.SetBitmap(&own.bitmap);  // lets go of its pixels, and these stay their owner's
  device.SetBitmap(nullptr);
  device.GetBitmap(&bitmap);
  EXPECT_EQ(bitmap.fImage, own.bitmap.fImage);
}

TEST(RasterDevice, WithoutPixelsItReportsToItsBounderAndDrawsNothing) {
  ThrowOnHalt halt;
  hsGRasterDevice device;
  device.SetSize(20, 10, hsGBitmap::kConfig_RGB16, nullptr);
  device.SetBitmap(nullptr);
  const auto counter = hsMake<Counter>();
  device.SetBounder(counter.get());
  Random random(5);
  const Surface picture(hsGBitmap::kConfig_ARGB32, 4, 4, random);
  const hsPoint a{kFixed1, kFixed1}, b{9 * kFixed1, 5 * kFixed1};
  const hsRect rect = Fixed(1, 1, 9, 9);
  for (uint32_t flags : {0u, 1u, 2u, 3u}) {
    hsGAttribute attr(flags);
    device.DrawFull(&attr);
    device.DrawLine(&a, &b, &attr);
    device.DrawRect(&rect, &attr);
    device.DrawOval(&rect, &attr);
    device.DrawBitmap(&picture.bitmap, 0, 0, &attr);
    device.CopyBitmap(&picture.bitmap, 0, 0, &attr);
    device.Scale(kFixed1 * 2, kFixed1);
    device.DrawBitmap(&picture.bitmap, 0, 0, &attr);
  }
  EXPECT_EQ(counter->count, 7 * 4);
  hsRegion dirty;
  for (const auto& [d, touched] : {std::pair{2, hsIntRect{3, 3, 8, 8}}, {-2, hsIntRect{1, 1, 6, 6}}}) {
    device.ScrollRect({3, 3, 6, 6}, d, d, &dirty);
    EXPECT_EQ(counter->last, touched) << "where it was and where it goes";
  }
  device.EraseColor(kBlack);
  EXPECT_EQ(counter->count, 7 * 4 + 3);
}

TEST(RasterDevice, StatesAndReplay) {
  Random random(7);
  Surface surface(hsGBitmap::kConfig_RGB16, 10, 10, random), other(surface);
  DeviceOn device(surface), second(other);
  device.ClipIntRect({0, 0, 8, 8});
  device.Save();
  device.Translate(2 * kFixed1, 0);
  device.ClipIntRect({0, 0, 3, 9});
  device.Replay(&second);
  device.Replay(nullptr);
  hsGAttribute attr;
  const hsRect rect = Fixed(1, 1, 9, 9);
  device.DrawRect(&rect, &attr);
  second.DrawRect(&rect, &attr);
  EXPECT_EQ(surface, other);
  EXPECT_EQ(surface.Get(3, 1), 0u);
  EXPECT_EQ(surface.Get(4, 7), 0u);
  device.Restore();
  EXPECT_EQ(ReportOf([&] { device.Restore(); }), "nil param: 0");
  EXPECT_EQ(ReportOf([&] { device.SaveLayer(nullptr, &attr); }), "unknown config: 2");
  EXPECT_EQ(ReportOf([&] { device.DrawRect(&rect, nullptr); }), "nil param: 0");

  const hsPoint point{kFixed1, kFixed1};
  hsPoint back{7, 7};
  hsMatrix singular;
  singular.fMap[0][0] = singular.fMap[0][1] = singular.fMap[1][0] = singular.fMap[1][1] = kFixed1;
  device.ConcatMatrix(singular);
  device.InverseMapPoints(1, &point, &back);
  EXPECT_EQ(back, (hsPoint{7, 7})) << "nothing leads back";
}

// Rectangles too go as paths where there is a bounder.
TEST(RasterDevice, StrokesOfHalfAPixel) {
  ThrowOnHalt halt;
  Random random(4);
  Surface surface(hsGBitmap::kConfig_Alpha8, 10, 10, random);
  DeviceOn device(surface);
  device.EraseColor({});
  device.SetBounder(hsMake<Counter>().get());
  hsGAttribute attr(hsGAttribute::kFrame);
  attr.SetFrameSize(kFixedHalf);
  const hsPoint a{3 * kFixed1 / 2, kFixed1}, b{3 * kFixed1 / 2, 8 * kFixed1};  // upright: no direction but down
  device.DrawLine(&a, &b, &attr);
  // From 2.75 to 3.25 lies no column's middle, from 6.25 to 6.75 there is one.
  const hsRect rect{3 * kFixed1, kFixed1, 13 * kFixed1 / 2, 8 * kFixed1};
  device.DrawRect(&rect, &attr);
  for (int x = 0; x < 10; ++x) EXPECT_EQ(surface.Get(x, 4), x == 1 || x == 6 ? 255u : 0u) << x;
}

// Doubles the stroke, or makes it a fill.
class WidthEffect : public hsGPathEffect {
 public:
  explicit WidthEffect(hsScalar width) : fWidth(width) {}
  bool FilterPath(const hsMatrix*, hsScalar* width, const hsPath* src, hsPath* dst) const override {
    seen = *width;
    if (fWidth == 0) return false;
    *width = fWidth;
    *dst = *src;
    return true;
  }
  mutable hsScalar seen = 0;

 private:
  hsScalar fWidth;
};

TEST(RasterDevice, APathEffectSeesTheFrameSizeAndThePaintComesBack) {
  ThrowOnHalt halt;
  const hsRect rect = Fixed(4, 4, 16, 16);
  for (bool frame : {false, true}) {
    for (hsScalar width : {hsScalar{0}, -kFixed1, 4 * kFixed1}) {
      Random random(8);
      Surface surface(hsGBitmap::kConfig_RGB16, 20, 20, random), expected(surface);
      const auto effect = hsMake<WidthEffect>(width);
      hsGAttribute attr(frame ? hsGAttribute::kFrame : 0u);
      attr.SetFrameSize(2 * kFixed1);
      attr.SetMinWidth(3 * kFixed1);  // of the stroke that is drawn, not of what the effect is passed
      attr.SetPathEffect(effect.get());
      DeviceOn device(surface);
      device.DrawOval(&rect, &attr);
      EXPECT_EQ(effect->seen, frame ? 2 * kFixed1 : -kFixed1);
      EXPECT_EQ(attr.PathEffect(), effect.get());
      EXPECT_EQ(attr.Flags(), frame ? hsGAttribute::kFrame : 0u);
      EXPECT_EQ(attr.FrameSize(), 2 * kFixed1);

      const bool framed = width == 0 ? frame : width > 0;
      hsGAttribute plain(framed ? hsGAttribute::kFrame : 0u);
      plain.SetFrameSize(width > 0 ? width : 2 * kFixed1);
      plain.SetMinWidth(3 * kFixed1);
      DeviceOn model(expected);
      model.DrawOval(&rect, &plain);
      EXPECT_EQ(surface, expected) << frame << " " << width;
    }
  }
}

TEST(RasterDevice, ScrollsInsideTheClipAndReportsWhatIsUncovered) {
  ThrowOnHalt halt;
  Random random(9);
  for (int i = 0; i < 400; ++i) {
    const bool deep = random.Chance(50);
    Surface surface(deep ? hsGBitmap::kConfig_RGB16 : hsGBitmap::kConfig_Alpha8, 24, 16, random);
    const Surface before(surface);
    DeviceOn device(surface);
    const hsRegion clip = RandomRegion(random, surface.Bounds());
    const bool clips = random.Chance(70);
    if (clips) device.SetClipRgn(&clip);
    const hsIntRect rect{random.Between(-3, 12), random.Between(-3, 8), random.Between(12, 27), random.Between(8, 19)};
    const int dx = random.Between(-6, 6), dy = random.Between(-4, 4);
    hsRegion dirty;
    device.ScrollRect(rect, dx, dy, &dirty);

    const auto inside = [&](int x, int y) {
      return surface.Bounds().Contains(x, y) && (!clips || clip.Contains(x, y));
    };
    bool moves = false;
    const auto covered = [&](int x, int y) {
      return inside(x, y) && inside(x - dx, y - dy) && rect.Contains(x - dx, y - dy) && (dx != 0 || dy != 0);
    };
    for (int y = 0; y < 16; ++y)
      for (int x = 0; x < 24; ++x) {
        moves |= covered(x, y);
        ASSERT_EQ(surface.Get(x, y), covered(x, y) ? before.Get(x - dx, y - dy) : before.Get(x, y)) << i;
      }
    for (int y = -5; y < 25; ++y)
      for (int x = -5; x < 30; ++x)
        ASSERT_EQ(dirty.Contains(x, y), moves && rect.Contains(x, y) && !covered(x, y)) << i << " " << x << "," << y;
  }
}

TEST(RasterDevice, ACursorStaysOnTopWhateverIsDrawnBelow) {
  ThrowOnHalt halt;
  Random random(10);
  Surface surface(hsGBitmap::kConfig_RGB16, 20, 12, random), bare(surface);
  Surface image(hsGBitmap::kConfig_RGB16, 5, 4, random);
  const auto cursor = hsMake<hsGCursor>();
  cursor->SetImage(image.bitmap, 1, 2);
  const Surface deep(hsGBitmap::kConfig_RGB24, 2, 2, random);
  EXPECT_EQ(ReportOf([&] { cursor->SetImage(deep.bitmap, 0, 0); }), "bad param: 0");
  cursor->Show();
  DeviceOn device(surface), model(bare);
  device.SetCursor(cursor.get());
  for (int i = 0; i < 200; ++i) {
    // The corner is far enough out for the image to be cut at any edge.
    cursor->SetPosition(surface.bitmap, random.Between(-2, 25), random.Between(-2, 14));
    const hsIntRect at = cursor->Bounds();
    const hsRect rect = Fixed(random.Below(10), random.Below(6), random.Between(10, 20), random.Between(6, 12));
    hsGAttribute attr;
    attr.SetColor(uint16_t(random.Chance(50) ? 0xFFFF : 0x8000), uint16_t(random.engine()), 0, 0xFFFF);
    device.DrawRect(&rect, &attr);
    device.DrawFull(&attr);
    model.DrawRect(&rect, &attr);
    model.DrawFull(&attr);
    for (int y = 0; y < 12; ++y)
      for (int x = 0; x < 20; ++x)
        ASSERT_EQ(surface.Get(x, y), at.Contains(x, y) ? image.Get(x - at.fLeft, y - at.fTop) : bare.Get(x, y))
            << i << " " << x << "," << y;
  }
  cursor->SetPosition(surface.bitmap, 10, 6);
  EXPECT_EQ(cursor->Bounds(), (hsIntRect{9, 4, 14, 8}));
  cursor->Hide();
  cursor->RestoreBackground(surface.bitmap);
  EXPECT_EQ(surface, bare);
  hsGAttribute attr;
  device.DrawFull(&attr);
  model.DrawFull(&attr);
  cursor->RestoreBackground(surface.bitmap);  // there is none any more
  EXPECT_EQ(surface, bare);
}

// Its pixels can't be drawn on this device; the draw below it goes on.
TEST(RasterDevice, ACursorThatCannotBeDrawnIsReportedOnly) {
  Random random(11);
  const Palette palette(random, 16);
  Surface surface(hsGBitmap::kConfig_Index8, 8, 8, random, &palette);
  const Surface image(hsGBitmap::kConfig_RGB16, 4, 4, random);
  const auto cursor = hsMake<hsGCursor>();
  cursor->SetImage(image.bitmap, 0, 0);
  cursor->Show();
  DeviceOn device(surface);
  device.SetCursor(cursor.get());
  ReturnOnHalt halt;
  hsGAttribute attr;
  attr.SetColorIndex(3);
  device.DrawFull(&attr);
  EXPECT_EQ(halt.Reports(), std::vector<std::string>{"unsupported source pixelsize: 16"});
  EXPECT_EQ(surface.Get(0, 0), 3u);
}

// What an empty layer becomes: a square of 4 pixels.
struct SquareFilter : hsGLayerFilter {
  bool MapSize(uint32_t* width, uint32_t* height) override {
    *width = *height = 4;
    return true;
  }
  bool Filter(const hsGBitmap&, const hsGBitmap& dst) override {
    for (int32_t y = 0; y < 4; ++y) std::fill_n(dst.Row<hsGColor32>(y), 4, 0xFF00FF00);
    return true;
  }
};

// Drawing in the layer narrows the clip to it; drawn back, it meets the device's own clip again.
TEST(RasterDevice, AClosedLayerIsDrawnUnderTheClipBelowIt) {
  Random random(12);
  Surface surface(hsGBitmap::kConfig_RGB16, 10, 10, random);
  const Surface before(surface);
  DeviceOn device(surface);
  device.ClipIntRect({0, 0, 3, 10});
  hsGAttribute attr;
  attr.SetLayerFilter(hsMake<SquareFilter>().get());
  const hsRect outside = Fixed(20, 20, 30, 30);
  device.SaveLayer(&outside, &attr);
  hsGAttribute plain;
  device.DrawFull(&plain);
  device.Restore();
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 10; ++x) EXPECT_EQ(surface.Get(x, y), x < 3 && y < 4 ? Pack(0xFF00FF00) : before.Get(x, y));
}

}  // namespace
