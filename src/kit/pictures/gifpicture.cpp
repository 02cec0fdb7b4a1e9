#include "kit/pictures/gifpicture.h"

#include <algorithm>

#include "engine/images/gifdecoder.h"
#include "kit/errors.h"

namespace {

const char* messageOf(GifError error) {
  switch (error) {
    case GifError::badCodeSize: return "bad code size";
    case GifError::truncatedColorTable: return "its colour table is cut off";
    case GifError::badCode:
    case GifError::dictionaryOverflow: return "its pixels are damaged";
    case GifError::badSignature: return "not a GIF picture";
    case GifError::truncatedDescriptor: return "a description of its size is cut off";
    case GifError::endOfFile: return "it is cut off";
    case GifError::badGraphicControl: return "bad graphic control block";
    default: return "it can't be read";
  }
}

class GifFile {
 public:
  GifFile(const std::string& path, const std::vector<uint8_t>& bytes)
      : path(path), decoder([&bytes, this](uint8_t* buffer, size_t size) {
          size = std::min(size, bytes.size() - at);
          std::copy_n(bytes.data() + at, size, buffer);
          at += size;
          return size;
        }) {}

  void decode(const GifDecoder::Begin& begin, const GifDecoder::Row& row) {
    if (const GifError error = decoder.decode(begin, row); error != GifError::none)
      throw KitError(path, messageOf(error));
  }

  const GifImage& image() const { return decoder.image(); }

 private:
  std::string path;
  size_t at = 0;
  GifDecoder decoder;
};

void putRow(const GifImage& image, uint32_t y, const uint8_t* indices, uint32_t count, Picture* picture) {
  y += image.top;
  if (y >= picture->height || image.left >= picture->width) return;
  count = std::min(count, picture->width - image.left);
  uint32_t* out = picture->pixels.data() + size_t{y} * picture->width + image.left;
  for (uint32_t x = 0; x < count; ++x)
    out[x] = indices[x] == image.transparent ? 0 : 0xFF000000 | image.colors[indices[x]] >> 8;
}

}  // namespace

bool isGif(const std::vector<uint8_t>& bytes) {
  return bytes.size() >= 3 && bytes[0] == 'G' && bytes[1] == 'I' && bytes[2] == 'F';
}

Picture decodeGif(const std::string& path, const std::vector<uint8_t>& bytes) {
  Picture picture;
  GifFile file(path, bytes);
  file.decode(
      [&](uint32_t width, uint32_t height, const auto*) {
        checkPictureSize(path, width, height);
        picture.width = width;
        picture.height = height;
        picture.pixels.assign(size_t{width} * height, 0);
        return true;
      },
      [&](uint32_t y, const uint8_t* indices, uint32_t count) {
        if (file.image().number == 0) putRow(file.image(), y, indices, count, &picture);
      });
  if (file.image().number < 0) throw KitError(path, "there is no image in it");
  return picture;
}

GifSummary summarizeGif(const std::string& path, const std::vector<uint8_t>& bytes) {
  GifSummary summary{0, 0, 0, 0, -1};
  GifFile file(path, bytes);
  file.decode(
      [&](uint32_t width, uint32_t height, const auto*) {
        summary.width = width;
        summary.height = height;
        return true;
      },
      [&](uint32_t, const uint8_t*, uint32_t) {
        if (file.image().number > 0) return;
        summary.colors = file.image().colorCount;
        summary.transparent = file.image().transparent;
      });
  summary.images = file.image().number + 1;
  return summary;
}
