#include "kit/fonts/specimen.h"

#include <algorithm>
#include <vector>

#include "engine/screen/display.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "kit/files.h"
#include "kit/fonts/registeredfont.h"

namespace {

constexpr char kPangram[] = "The quick brown fox jumps over the lazy dog. 0123456789";
constexpr int kSizes[] = {12, 16, 20, 24, 32, 48};
constexpr int kMargin = 12, kBetweenSizes = 12;

// How a page's style asks for it: neither antialias nor gridfit, gridfit, antialias, both.
constexpr uint32_t kUnfitted = hsGAttribute::kLinearText | hsGAttribute::kNoGridFit;
constexpr uint32_t kLooks[] = {kUnfitted, 0, hsGAttribute::kAntiAlias | kUnfitted, hsGAttribute::kAntiAlias};

// Calls draw(paint, baseline) for each line from the top down, and returns the height of all.
template <class Draw>
int layOut(uint32_t id, Draw&& draw) {
  int y = kMargin;
  for (int size : kSizes) {
    for (uint32_t look : kLooks) {
      hsGAttribute paint(look);
      paint.SetFontID(id);
      paint.SetTextSize(hsIntToFixed(size));
      hsPoint top, bottom;
      paint.MeasureText(0, nullptr, &top, &bottom);
      draw(&paint, y - hsFixedRound(top.fY));
      y += std::clamp(hsFixedRound(hsWrapSub(bottom.fY, top.fY)), 1, 4 * size);
    }
    y += kBetweenSizes;
  }
  return y - kBetweenSizes + kMargin;
}

}  // namespace

// Black on white, by the coverage that the player would draw with.
Picture fontSpecimen(const std::string& font) {
  const std::vector<uint8_t> bytes = readFile(font);
  const RegisteredFont registered(bytes);
  const uint32_t id = registered.id;
  const int height = layOut(id, [](hsGAttribute*, int) {});
  std::vector<uint8_t> coverage(size_t(kScreenWidth) * size_t(height));
  hsGBitmap bitmap;
  bitmap.SetConfig(hsGBitmap::kConfig_Alpha8);
  bitmap.fWidth = bitmap.fRowBytes = kScreenWidth;
  bitmap.fHeight = uint32_t(height);
  bitmap.fImage = coverage.data();
  hsGRasterDevice device;
  device.SetBitmap(&bitmap);
  layOut(id, [&](hsGAttribute* paint, int baseline) {
    device.DrawText(sizeof kPangram - 1, kPangram, hsIntToFixed(kMargin), hsIntToFixed(baseline), paint);
  });
  device.SetBitmap(nullptr);
  Picture specimen{kScreenWidth, uint32_t(height), {}};
  specimen.pixels.reserve(coverage.size());
  for (uint8_t c : coverage) specimen.pixels.push_back(0xFF000000 | (255u - c) * 0x010101);
  return specimen;
}
