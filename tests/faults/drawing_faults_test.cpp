// Memory that runs out in the graphics library and in its fonts: the call fails, and the next one draws as ever.
#include "faults/eachfails.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "gfx/pixel/spreadfilter.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/vector/hsregion.h"
#include "support/blockfont.h"

namespace {

constexpr uint32_t kWidth = 120, kHeight = 80;

// Everything that takes memory, on a device of its own.
class Drawing {
 public:
  std::vector<uint8_t> draw() {
    std::vector<uint8_t> pixels(size_t{kWidth} * kHeight * 2);
    hsGBitmap bitmap;
    bitmap.SetConfig(hsGBitmap::kConfig_RGB16);
    bitmap.fWidth = kWidth;
    bitmap.fHeight = kHeight;
    bitmap.fRowBytes = 2 * kWidth;
    bitmap.fImage = pixels.data();
    hsGRasterDevice device;
    device.SetBitmap(&bitmap);
    shapes(device);
    texts(device);
    device.SetBitmap(nullptr);
    return pixels;
  }

 private:
  void shapes(hsGRasterDevice& device) {
    hsGAttribute paint(hsGAttribute::kAntiAlias);
    paint.SetColor(0xFFFF, 0x8000, 0x2000, 0xFFFF);
    hsPath path;
    path.MoveTo({5 * kFixed1, 5 * kFixed1});
    path.QuadTo({60 * kFixed1, 90 * kFixed1}, {110 * kFixed1, 9 * kFixed1});
    path.QuadTo({30 * kFixed1, -20 * kFixed1}, {5 * kFixed1, 70 * kFixed1});
    path.Close();
    device.Save();
    device.ClipPath(path);
    device.Rotate(10 * kFixed1);
    device.FillColor(0xFFFF, 0x4000, 0x8000, 0);
    device.DrawPath(&path, &paint);
    device.Restore();
    paint.SetFlags(hsGAttribute::kAntiAlias | hsGAttribute::kFrame);
    paint.SetFrameSize(3 * kFixed1);
    paint.SetCapJoin(5);
    device.DrawPath(&path, &paint);
    hsRegion region(hsIntRect{3, 3, 40, 40});
    hsRegion hole(hsIntRect{10, 10, 20, 50});
    region.Difference(region, hole);
    device.SetClipRgn(&region);
    const auto filter = hsAdopt(new SpreadFilter);
    paint.SetMaskFilter(filter.get());
    device.DrawPath(&path, &paint);
    device.SetClipRgn(nullptr);
  }

  void texts(hsGRasterDevice& device) {
    const uint32_t font =
        hsGFontRegistry::RegisterMemory(uint32_t(bytes.size()), bytes.data(), false, kFontFormat_TrueType);
    struct Registered {
      ~Registered() { hsGFontRegistry::UnregisterFont(font); }
      uint32_t font;
    } const registered{font};
    hsGAttribute paint(hsGAttribute::kAntiAlias);
    paint.SetFontID(font);
    paint.SetTextEncoding(hsGAttribute::kUTF8);
    for (const uint32_t flags : {0u, uint32_t{hsGAttribute::kAntiAlias}, uint32_t{hsGAttribute::kTextAsPaths}}) {
      paint.SetFlags(flags);
      paint.SetTextSize(20 * kFixed1);
      device.DrawText(4, "ab a", 8 * kFixed1, 60 * kFixed1, &paint);
    }
    hsGTextFace face;
    face.fOutlineWidth = kFixed1 / 8;
    face.fUnderlineThickness = kFixed1 / 10;
    paint.SetTextFace(&face);
    device.DrawText(3, "b\xC3\xA9", 60 * kFixed1, 30 * kFixed1, &paint);
    char name[256];
    hsGFontRegistry::GetFontName(font, kFontName_Any, name);
    hsGFontRegistry::FindFontID(kFontName_Full, "none");
  }

  const std::vector<uint8_t> bytes = BlockFontFile();
};

TEST(DrawingFaultsTest, WhatFindsNoneLeavesTheNextPictureWhole) {
  Drawing drawing;
  const std::vector<uint8_t> picture = drawing.draw();
  eachFails<FailingAllocation>(
      5, [&] { drawing.draw(); }, [&] { ASSERT_TRUE(drawing.draw() == picture); });
  hsGFontRegistry::Reset();
}

}  // namespace
