// GIF pictures into the cache.
#include <algorithm>

#include "engine/base/hostfile.h"
#include "engine/base/log.h"
#include "engine/images/gifdecoder.h"
#include "engine/images/imagefiles.h"

namespace {

std::unique_ptr<Clut> clutOf(const std::array<uint32_t, 256>& rgb) {
  auto clut = std::make_unique<Clut>();
  clut->count = int(rgb.size());
  hostConvertRgbToYCrCb(rgb.data(), clut->colors.data(), clut->count);
  clutFinish(clut.get());
  return clut;
}

}  // namespace

HeapHandle gifRead(ImageCache& images, const char* name) {
  const HostFilePtr file = openHostFile(name);
  if (!file) {
    images.refuse(ImageRefusal::missing);
    if (logVerbose) hostLog("Can't find: %s\n", name);
    return 0;
  }
  HeapHandle image = 0;
  GifDecoder decoder([&](uint8_t* buffer, size_t size) { return hostRead(file.get(), buffer, size); });
  const GifError error = decoder.decode(
      [&](uint32_t width, uint32_t height, const std::array<uint32_t, 256>* colors) {
        image = images.allocate(name, width, height);
        if (image && colors) images.setClut(image, clutOf(*colors));
        return image != 0;
      },
      [&](uint32_t y, const uint8_t* indices, uint32_t count) {
        const CachedImage& target = images.image(image);
        if (y >= target.height) return;
        std::copy_n(indices, std::min(count, target.width), images.writablePixels(image) + size_t{y} * target.rowBytes);
      });
  if (error == GifError::none) return image;
  images.refuse(image ? ImageRefusal::badData : ImageRefusal::badHeader);
  if (image) images.free(image);
  return 0;
}
