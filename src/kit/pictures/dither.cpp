#include "kit/pictures/dither.h"

#include <algorithm>
#include <array>

namespace {

using Error = std::array<int, 3>;  // in sixteenths

// Error diffusion with the weights 7, 3, 5 and 1 of 16, alternate rows from the left and from the right.
class Diffusion {
 public:
  Diffusion(uint32_t w, const NearestColor& p) : width(w), palette(p), here(w + 2), below(w + 2) {}

  void row(const uint32_t* pixels, bool fromLeft, uint32_t* out) {
    const int step = fromLeft ? 1 : -1;
    int x = fromLeft ? 0 : int(width) - 1;
    for (uint32_t n = 0; n < width; ++n, x += step) out[x] = pixel(pixels[x], x, step);
    std::swap(here, below);
    std::fill(below.begin(), below.end(), Error{});
  }

 private:
  uint32_t pixel(uint32_t color, int x, int step) {
    if (color == kTransparentPixel) return kNoEntry;  // what came to it is lost, so that no halo forms
    const EngineColor exact(color);
    const Error& error = at(here, x);
    const EngineColor wanted(corrected(exact.y, error[0]), corrected(exact.cr, error[1]),
                             corrected(exact.cb, error[2]));
    const size_t number = palette.find(wanted);
    const EngineColor& got = palette.at(number);
    const Error missed = {wanted.y - got.y, wanted.cr - got.cr, wanted.cb - got.cb};
    for (size_t n = 0; n < 3; ++n) {
      at(here, x + step)[n] += 7 * missed[n];
      at(below, x - step)[n] += 3 * missed[n];
      at(below, x)[n] += 5 * missed[n];
      at(below, x + step)[n] += missed[n];
    }
    return uint32_t(number);
  }
  static int corrected(int value, int error) {
    return std::clamp(value + (error >= 0 ? error + 8 : error - 8) / 16, 0, 255);
  }
  static Error& at(std::vector<Error>& errors, int x) { return errors[size_t(x + 1)]; }

  uint32_t width;
  const NearestColor& palette;
  std::vector<Error> here, below;  // one more at each side
};

uint32_t nearest(uint32_t color, const NearestColor& palette) {
  return color == kTransparentPixel ? kNoEntry : uint32_t(palette.find(EngineColor(color)));
}

}  // namespace

std::vector<uint32_t> mapToPalette(const std::vector<uint32_t>& pixels, uint32_t width, const NearestColor& palette,
                                   bool dither) {
  std::vector<uint32_t> numbers(pixels.size());
  if (!dither) {
    std::transform(pixels.begin(), pixels.end(), numbers.begin(), [&](uint32_t c) { return nearest(c, palette); });
    return numbers;
  }
  Diffusion diffusion(width, palette);
  bool fromLeft = true;
  for (size_t at = 0; at < pixels.size(); at += width, fromLeft = !fromLeft)
    diffusion.row(pixels.data() + at, fromLeft, numbers.data() + at);
  return numbers;
}
