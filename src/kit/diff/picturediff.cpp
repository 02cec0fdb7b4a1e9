#include "kit/diff/picturediff.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr uint32_t kDifferent = 0xE01030, kMasked = 0x3060E0;

bool contains(const Bounds& b, int32_t x, int32_t y) { return x >= b.x && y >= b.y && x - b.x < b.w && y - b.y < b.h; }

// The largest difference of a channel.
int distance(uint32_t a, uint32_t b) {
  int most = 0;
  for (int shift = 0; shift < 32; shift += 8)
    most = std::max(most, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
  return most;
}

// Half way to white.
uint32_t pale(uint32_t color) { return (color >> 1 & 0x7F7F7F) + 0x808080; }

class Comparison {
 public:
  Comparison(const Picture& a, const Picture& b, const PictureDiffOptions& o)
      : first(a), second(b), options(o), width(std::max(a.width, b.width)), height(std::max(a.height, b.height)) {}

  bool isMasked(uint32_t x, uint32_t y) const {
    return std::any_of(options.masked.begin(), options.masked.end(),
                       [&](const Bounds& b) { return contains(b, int32_t(x), int32_t(y)); });
  }

  // 256 where only one picture has a pixel; 0 within the tolerance.
  int differenceAt(uint32_t x, uint32_t y) const {
    const bool both = x < std::min(first.width, second.width) && y < std::min(first.height, second.height);
    if (!both) return x < width && y < height && (has(first, x, y) || has(second, x, y)) ? 256 : 0;
    const uint32_t a = pixel(first, x, y), b = pixel(second, x, y);
    if (a == b) return 0;
    const int off = distance(a, b);
    return off > options.tolerance ? off : 0;
  }

  static bool has(const Picture& p, uint32_t x, uint32_t y) { return x < p.width && y < p.height; }
  static uint32_t pixel(const Picture& p, uint32_t x, uint32_t y) { return p.pixels[size_t{y} * p.width + x]; }

  const Picture &first, &second;
  const PictureDiffOptions& options;
  const uint32_t width, height;
};

}  // namespace

PictureDiff comparePictures(const Picture& a, const Picture& b, const PictureDiffOptions& options) {
  PictureDiff diff;
  diff.sameSize = a.width == b.width && a.height == b.height;
  if (diff.sameSize && a.pixels == b.pixels) return diff;
  const Comparison both(a, b, options);
  uint32_t left = both.width, top = both.height, right = 0, bottom = 0;
  for (uint32_t y = 0; y < both.height; ++y)
    for (uint32_t x = 0; x < both.width; ++x) {
      const int off = both.differenceAt(x, y);
      if (off == 0 || both.isMasked(x, y)) continue;
      ++diff.pixels;
      diff.most = std::max(diff.most, std::min(off, 255));
      left = std::min(left, x), right = std::max(right, x + 1);
      top = std::min(top, y), bottom = std::max(bottom, y + 1);
    }
  if (diff.pixels > 0) diff.bounds = {int32_t(left), int32_t(top), int32_t(right - left), int32_t(bottom - top)};
  return diff;
}

Picture pictureOfDifference(const Picture& a, const Picture& b, const PictureDiffOptions& options) {
  const Comparison both(a, b, options);
  Picture out{both.width, both.height, {}};
  out.pixels.reserve(size_t{out.width} * out.height);
  for (uint32_t y = 0; y < out.height; ++y)
    for (uint32_t x = 0; x < out.width; ++x)
      out.pixels.push_back(both.isMasked(x, y)            ? kMasked
                           : both.differenceAt(x, y) != 0 ? kDifferent
                           : Comparison::has(a, x, y)     ? pale(Comparison::pixel(a, x, y))
                                                          : 0xFFFFFF);
  return out;
}

std::string differenceText(const PictureDiff& diff, const Picture& a, const Picture& b) {
  const auto size = [](uint64_t w, uint64_t h) { return std::to_string(w) + "x" + std::to_string(h); };
  std::string out;
  if (!diff.sameSize) out = "the sizes differ, " + size(a.width, a.height) + " and " + size(b.width, b.height);
  if (diff.pixels == 0) return out;
  if (!out.empty()) out += "; ";
  return out + std::to_string(diff.pixels) + (diff.pixels == 1 ? " pixel differs, in " : " pixels differ, in ") +
         size(uint64_t(diff.bounds.w), uint64_t(diff.bounds.h)) + " at " + std::to_string(diff.bounds.x) + "," +
         std::to_string(diff.bounds.y) + ", by " + std::to_string(diff.most) + " of 255 at most";
}

Picture cropPicture(const Picture& picture, const Bounds& area) {
  Picture out{uint32_t(std::max(area.w, 0)), uint32_t(std::max(area.h, 0)), {}};
  out.pixels.resize(size_t{out.width} * out.height, 0xFF000000);
  for (int32_t y = 0; y < area.h; ++y)
    for (int32_t x = 0; x < area.w; ++x) {
      const int64_t fromX = int64_t{area.x} + x, fromY = int64_t{area.y} + y;
      if (fromX >= 0 && fromY >= 0 && fromX < picture.width && fromY < picture.height)
        out.pixels[size_t(y) * out.width + size_t(x)] = picture.pixels[size_t(fromY) * picture.width + size_t(fromX)];
    }
  return out;
}
