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
  NewImage image(images);
  GifDecoder decoder([&](uint8_t* buffer, size_t size) { return hostRead(file.get(), buffer, size); });
  const GifError error = decoder.decode(
      [&](uint32_t width, uint32_t height, const std::array<uint32_t, 256>* colors) {
        image.handle = images.allocate(name, width, height);
        if (image.handle && colors) images.setClut(image.handle, clutOf(*colors));
        return image.handle != 0;
      },
      [&](uint32_t y, const uint8_t* indices, uint32_t count) {
        const CachedImage& target = images.image(image.handle);
        if (y >= target.height) return;
        std::copy_n(indices, std::min(count, target.width),
                    images.writablePixels(image.handle) + size_t{y} * target.rowBytes);
      });
  if (error == GifError::none) return image.keep();
  images.refuse(image.handle ? ImageRefusal::badData : ImageRefusal::badHeader);
  return 0;
}
