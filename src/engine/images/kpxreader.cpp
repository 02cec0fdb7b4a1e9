// .kpx files: a header of 12 bytes, perhaps the name of a colour table, then one index a pixel.
#include <algorithm>
#include <array>
#include <string>

#include "engine/base/hostfile.h"
#include "engine/base/log.h"
#include "engine/images/imagefiles.h"
#include "gfx/foundation/hsbytes.h"

namespace {

constexpr uint8_t kFormat8Bit = 1;

// The header; bytes 0, 1 and 6 have no meaning.
struct KpxHeader {
  std::array<uint8_t, 12> bytes;

  uint32_t width() const { return hsBig16(&bytes[2]); }
  uint32_t height() const { return hsBig16(&bytes[4]); }
  uint8_t format() const { return bytes[7]; }
  uint32_t pixelOffset() const { return hsBig16(&bytes[8]); }
  uint8_t clutNameExtra() const { return bytes[10]; }  // bytes of the name after the header; 0 for no colour table
  char clutNameFirst() const { return char(bytes[11]); }
};

bool readAll(HostFile* file, void* buffer, size_t size) { return hostRead(file, buffer, size) == size; }

// Reads on to the offset, unless that has been passed.
bool skipTo(HostFile* file, uint32_t offset) {
  std::array<uint8_t, 1024> chunk;
  const size_t at = hostTell(file);
  if (at == kHostFileFailed) return false;
  for (size_t left = offset > at ? offset - at : 0; left > 0; left -= std::min(left, chunk.size()))
    if (!readAll(file, chunk.data(), std::min(left, chunk.size()))) return false;
  return true;
}

// Always false.
bool complain(ImageCache& images, ImageRefusal reason, const char* message) {
  images.refuse(reason);
  if (logVerbose) hostLog("%s\n", message);
  return false;
}

// Whether the picture could be filled from what follows the header.
bool fill(ImageCache& images, HeapHandle image, HostFile* file, const KpxHeader& header) {
  if (header.format() != kFormat8Bit) return complain(images, ImageRefusal::badFormat, "Invalid image format");
  if (header.clutNameExtra()) {
    std::string name(1 + size_t{header.clutNameExtra()}, header.clutNameFirst());
    if (!readAll(file, name.data() + 1, header.clutNameExtra()))
      return complain(images, ImageRefusal::badColorTable, "Failed to read clut name");
    Clut* clut = clutLoad(name.c_str());  // up to the zero byte that ends it
    if (!clut) {
      images.refuse(ImageRefusal::badColorTable);
      if (logVerbose) hostLog("Can't load CLUT '%s'\n", name.c_str());
      return false;
    }
    images.setClut(image, clut);
  }
  if (!skipTo(file, header.pixelOffset())) return complain(images, ImageRefusal::cutShort, "Error seeking pixels");
  const size_t size = size_t{header.width()} * header.height();
  return readAll(file, images.writablePixels(image), size) ||
         complain(images, ImageRefusal::cutShort, "Error reading pixel data");
}

}  // namespace

HeapHandle kpxRead(ImageCache& images, const char* name) {
  const HostFilePtr file = openHostFile(name);
  if (!file) {
    images.refuse(ImageRefusal::missing);
    if (logVerbose) hostLog("Can't find: %s\n", name);
    return 0;
  }
  KpxHeader header;
  if (!readAll(file.get(), header.bytes.data(), header.bytes.size())) {
    complain(images, ImageRefusal::badHeader, "Failed to read header");
    return 0;
  }
  NewImage image(images);
  image.handle = images.allocate(name, header.width(), header.height());
  return image.handle && fill(images, image.handle, file.get(), header) ? image.keep() : 0;
}
