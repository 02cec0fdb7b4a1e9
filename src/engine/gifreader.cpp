// GIF pictures into the cache.
#include <algorithm>
#include <cstring>

#include "engine/clut.h"
#include "engine/core.h"
#include "engine/gifdecoder.h"
#include "engine/imagecache.h"
#include "engine/imagefiles.h"
#include "host/host.h"

namespace {

Clut* clutOf(const std::array<uint32_t, 256>& rgb) {
  auto* clut = new Clut;
  clut->count = int(rgb.size());
  hostConvertRgbToYCrCb(rgb.data(), clut->colors.data(), clut->count);
  clutFinish(clut);
  return clut;
}

}  // namespace

uint32_t gifRead(const char* name) {
  HostFile* file = hostOpen(name);
  if (!file) {
    if (logVerbose) hostLog("Can't find: %s\n", name);
    return 0;
  }
  uint32_t image = 0;
  GifDecoder decoder([file](uint8_t* buffer, size_t size) { return hostRead(file, buffer, size); });
  const GifError error = decoder.decode(
      [&](uint32_t width, uint32_t height, const std::array<uint32_t, 256>* colors) {
        image = imageAllocate(name, width, height);
        if (image && colors) imageSetClut(image, clutOf(*colors));
        return image != 0;
      },
      [&](uint32_t y, const uint8_t* indices, uint32_t count) {
        const CachedImage& target = *imageOf(image);
        if (y >= target.height) return;
        std::copy_n(indices, std::min(count, target.width), imageWritablePixels(image) + size_t{y} * target.rowBytes);
      });
  hostClose(file);
  if (error == GifError::none) return image;
  if (image) imageFree(image);
  return 0;
}
