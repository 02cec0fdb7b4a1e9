// .kpx files: a header of 12 bytes, perhaps the name of a colour table, then one index a pixel.
#include <algorithm>
#include <array>
#include <string>

#include "engine/clut.h"
#include "engine/core.h"
#include "engine/imagecache.h"
#include "engine/imagefiles.h"
#include "host/host.h"

namespace {

constexpr uint8_t kFormat8Bit = 1;

// The header; bytes 0, 1 and 6 say nothing.
struct KpxHeader {
  std::array<uint8_t, 12> bytes;

  uint32_t big16(size_t at) const { return uint32_t(bytes[at] << 8 | bytes[at + 1]); }
  uint32_t width() const { return big16(2); }
  uint32_t height() const { return big16(4); }
  uint8_t format() const { return bytes[7]; }
  uint32_t pixelOffset() const { return big16(8); }
  uint8_t clutNameExtra() const { return bytes[10]; }  // bytes of the name behind the header; 0 for no colour table
  char clutNameFirst() const { return char(bytes[11]); }
};

bool readAll(HostFile* file, void* buffer, size_t size) { return hostRead(file, buffer, size) == size; }

// Reads on to the offset; one that lies behind already is where we are.
bool skipTo(HostFile* file, uint32_t offset) {
  std::array<uint8_t, 1024> chunk;
  while (hostTell(file) < offset)
    if (!readAll(file, chunk.data(), std::min<size_t>(chunk.size(), offset - hostTell(file)))) return false;
  return true;
}

int complain(const char* message) {
  if (logVerbose) hostLog("%s\n", message);
  return 0;
}

// Whether the picture could be filled from behind the header on.
bool fill(HostFile* file, const KpxHeader& header, uint32_t image) {
  if (header.format() != kFormat8Bit) return complain("Invalid image format");
  if (header.clutNameExtra()) {
    std::string name(1 + size_t{header.clutNameExtra()}, header.clutNameFirst());
    if (!readAll(file, name.data() + 1, header.clutNameExtra())) return complain("Failed to read clut name");
    Clut* clut = clutLoad(name.c_str());  // up to the zero byte that ends it
    if (!clut) {
      if (logVerbose) hostLog("Can't load CLUT '%s'\n", name.c_str());
      return false;
    }
    imageSetClut(image, clut);
  }
  if (!skipTo(file, header.pixelOffset())) return complain("Error seeking pixels");
  const size_t size = size_t{header.width()} * header.height();
  return readAll(file, imageWritablePixels(image), size) || complain("Error reading pixel data");
}

uint32_t readFrom(HostFile* file, const char* name) {
  KpxHeader header;
  if (!readAll(file, header.bytes.data(), header.bytes.size())) return uint32_t(complain("Failed to read header"));
  const uint32_t image = imageAllocate(name, header.width(), header.height());
  if (!image || fill(file, header, image)) return image;
  imageFree(image);
  return 0;
}

}  // namespace

uint32_t kpxRead(const char* name) {
  HostFile* file = hostOpen(name);
  if (!file) {
    if (logVerbose) hostLog("Can't find: %s\n", name);
    return 0;
  }
  const uint32_t image = readFrom(file, name);
  hostClose(file);
  return image;
}
