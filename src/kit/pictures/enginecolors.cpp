#include "kit/pictures/enginecolors.h"

#include "host/color.h"

namespace {

uint32_t blend(uint32_t color, uint32_t background) {
  const uint32_t alpha = color >> 24;
  uint32_t blended = 0;
  for (int shift : {16, 8, 0}) {
    const uint32_t sum = (color >> shift & 255) * alpha + (background >> shift & 255) * (255 - alpha);
    blended |= (sum + 127) / 255 << shift;
  }
  return blended;
}

}  // namespace

std::vector<uint32_t> toEngineColors(const Picture& picture, std::optional<uint32_t> background) {
  std::vector<uint32_t> colors;
  colors.reserve(picture.pixels.size());
  uint32_t previous = 0, converted = rgbToYCrCb(0);  // neighbours are often equal, and the conversion is dear
  for (uint32_t pixel : picture.pixels) {
    if (!background && pixel < 0x80000000) {
      colors.push_back(kTransparentPixel);
      continue;
    }
    const uint32_t rgb = background ? blend(pixel, *background) : pixel & 0xFFFFFF;
    if (rgb != previous) converted = rgbToYCrCb(rgb << 8);
    previous = rgb;
    colors.push_back(converted);
  }
  return colors;
}
