#include "kit/pictures/kpxfile.h"

#include <algorithm>

#include "gfx/foundation/hsbytes.h"
#include "kit/errors.h"
#include "kit/files.h"

namespace {

constexpr size_t kHeaderSize = 12;
constexpr uint8_t kFormat8Bit = 1;

void put16(std::vector<uint8_t>* bytes, size_t at, size_t value) {
  (*bytes)[at] = uint8_t(value >> 8);
  (*bytes)[at + 1] = uint8_t(value);
}

}  // namespace

// The name's first character is in the header, the rest and a zero byte after it, but for the longest name, which ends
// with the bytes that its length allows.
KpxFile parseKpx(const std::string& path, const std::vector<uint8_t>& bytes) {
  if (bytes.size() < kHeaderSize) throw KitError(path, "too short for a picture");
  KpxFile picture{hsBig16(&bytes[2]), hsBig16(&bytes[4]), "", {}};
  if (bytes[7] != kFormat8Bit) throw KitError(path, "not a picture of 8 bits a pixel");
  const size_t nameEnd = kHeaderSize + bytes[10];
  if (nameEnd > bytes.size()) throw KitError(path, "the name of its colour table is cut off");
  if (bytes[10]) picture.clut = std::string(bytes.begin() + 11, bytes.begin() + long(nameEnd)).c_str();
  const size_t start = std::max<size_t>(hsBig16(&bytes[8]), nameEnd);
  const size_t size = size_t{picture.width} * picture.height;
  if (start > bytes.size() || size > bytes.size() - start) throw KitError(path, "its pixels are cut off");
  picture.pixels.assign(bytes.begin() + long(start), bytes.begin() + long(start + size));
  return picture;
}

std::vector<uint8_t> kpxBytes(const KpxFile& picture) {
  std::vector<uint8_t> bytes(kHeaderSize);
  bytes.reserve(kHeaderSize + picture.clut.size() + picture.pixels.size());
  put16(&bytes, 2, picture.width);
  put16(&bytes, 4, picture.height);
  bytes[7] = kFormat8Bit;
  if (!picture.clut.empty()) {
    bytes[10] = uint8_t(std::min<size_t>(picture.clut.size(), UINT8_MAX));
    bytes[11] = uint8_t(picture.clut[0]);
    bytes.insert(bytes.end(), picture.clut.begin() + 1, picture.clut.end());
    bytes.resize(kHeaderSize + bytes[10]);
  }
  put16(&bytes, 8, bytes.size());
  bytes.insert(bytes.end(), picture.pixels.begin(), picture.pixels.end());
  return bytes;
}

void writeKpxFile(const std::string& path, const KpxFile& picture) {
  const std::vector<uint8_t> bytes = kpxBytes(picture);
  writeFile(path, bytes.data(), bytes.size());
}
