// A font of blocks and a bitmap to draw on, for tests of text.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "gfx/halt.h"
#include "gfx/pixel/hsgcolortable.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/text/hsgfontregistry.h"
#include "gfx/text/hsgglyphcache.h"
#include "gfx/text/hsgtextcontext.h"
#include "t2k/fontbuilder.h"

// 1,000 units an em, so that at size 10 a pixel is 100 units.
inline SfntBuilder BlockFont() {
  SfntBuilder font;
  font.AddContours({RectContour(0, 0, 500, 500)}, 600);                            // 0: no such character
  font.characters[' '] = font.AddGlyph({}, 300, 0);                                // blank
  font.characters['a'] = font.AddContours({RectContour(100, 0, 500, 700)}, 600);   // 4 x 7 pixels, 1 from the pen
  font.characters['b'] = font.AddContours({RectContour(0, -200, 300, 300)}, 400);  // 3 x 5 pixels, 2 below
  font.characters[0xE9] = font.AddContours({RectContour(100, 0, 200, 100)}, 200);  // one pixel
  font.characters[0x20AC] = font.AddContours({RectContour(0, 0, 200, 200)}, 1000);
  font.tables["kern"] = SfntBuilder::KernTable({{2, 3, -100}});
  return font;
}

class TextTest : public testing::Test {
 public:
  ~TextTest() noexcept override {}

 protected:
  void SetUp() override {
    hsGFontRegistry::Reset();
    fFont = Register(BlockFont().Build());
    fPixels.assign(size_t{kWidth} * kHeight, 0);
    fBitmap.SetConfig(hsGBitmap::kConfig_Index8);
    const auto colors = hsMake<hsGColorTable>();
    colors->SetDefaultCube();
    fBitmap.SetColorTable(colors.get());
    fBitmap.fWidth = kWidth;
    fBitmap.fHeight = kHeight;
    fBitmap.fRowBytes = kWidth;
    fBitmap.fImage = fPixels.data();
    fAttr.SetFlags(hsGAttribute::kNoGridFit);
    fAttr.SetColorIndex(1);
    fAttr.SetTextSize(10 * kFixed1);
    fAttr.SetFontID(fFont);
    fAttr.SetTextEncoding(hsGAttribute::kUTF8);
    fDraw.fBitmap = &fBitmap;
    fDraw.fMatrix = &fMatrix;
    fDraw.fAttr = &fAttr;
  }
  void TearDown() override { hsGFontRegistry::Reset(); }

  // The registry reads the bytes in place.
  uint32_t Register(std::vector<uint8_t> bytes, uint32_t format = kFontFormat_TrueType) {
    fFonts.push_back(std::make_unique<std::vector<uint8_t>>(std::move(bytes)));
    return hsGFontRegistry::RegisterMemory(uint32_t(fFonts.back()->size()), fFonts.back()->data(), false, format);
  }

  void Draw(const std::string& text, hsFixed x, hsFixed y) { fDraw.DrawText(uint32_t(text.size()), text.data(), x, y); }
  hsFixed Width(const std::string& text) {
    return fAttr.MeasureText(uint32_t(text.size()), text.data(), nullptr, nullptr);
  }
  std::vector<hsFixed> Widths(const std::string& text) {
    std::vector<hsFixed> widths(text.size());
    widths.resize(fAttr.GetTextWidths(uint32_t(text.size()), text.data(), widths.data()));
    return widths;
  }
  // The X of each character and of the end.
  std::vector<hsFixed> Positions(const std::string& text) {
    hsGTextSpacing spacing;
    const bool spaced = fAttr.GetTextSpacing(&spacing);
    const auto context = hsAdopt(fAttr.GetTextContext(nullptr));
    const uint32_t count = context->SetText(uint32_t(text.size()), text.data());
    const hsPoint* positions = context->GetPositions(nullptr, spaced ? &spacing : nullptr);
    std::vector<hsFixed> xs;
    for (uint32_t i = 0; i <= count; ++i) xs.push_back(positions[i].fX);
    return xs;
  }
  void SetSpacing(hsFixed alignment, hsFixed word, hsFixed character, uint32_t flags = 0) {
    const hsGTextSpacing spacing = {flags, alignment, word, character};
    fAttr.SetTextSpacing(&spacing);
  }
  // The rectangles of set pixels, given by their columns and rows, and nothing else set. Clears them all.
  void ExpectBlocks(const std::vector<hsIntRect>& blocks) {
    std::vector<uint8_t> expected(fPixels.size(), 0);
    for (const hsIntRect& r : blocks)
      for (int y = r.fTop; y < r.fBottom; ++y)
        for (int x = r.fLeft; x < r.fRight; ++x) expected[size_t(y * kWidth + x)] = 1;
    for (int y = 0; y < kHeight; ++y)
      for (int x = 0; x < kWidth; ++x)
        ASSERT_EQ(std::exchange(fPixels[size_t(y * kWidth + x)], 0), expected[size_t(y * kWidth + x)])
            << x << ", " << y;
  }

  static constexpr int kWidth = 64, kHeight = 32;
  uint32_t fFont = 0;
  std::vector<std::unique_ptr<std::vector<uint8_t>>> fFonts;
  std::vector<uint8_t> fPixels;
  hsGBitmap fBitmap;
  hsMatrix fMatrix;
  hsGAttribute fAttr;
  hsGRawDraw fDraw;
};

constexpr hsFixed operator""_px(unsigned long long v) { return hsFixed(v << 16); }
