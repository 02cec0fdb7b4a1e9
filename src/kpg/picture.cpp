#include "kpg/picture.h"

#include <algorithm>

#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/gifpicture.h"
#include "kpg/png.h"

Picture readPicture(const std::string& path) {
  const std::vector<uint8_t> bytes = readFile(path);
  if (isPng(bytes)) return decodePng(path, bytes);
  if (isGif(bytes)) return decodeGif(path, bytes);
  throw CommandError(path + ": neither a PNG nor a GIF picture");
}

void checkPictureSize(const std::string& path, uint64_t width, uint64_t height) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width == 0 || height == 0) throw CommandError(path + ": " + size + " show nothing");
  if (width > UINT16_MAX || height > UINT16_MAX)
    throw CommandError(path + ": " + size + " are too many; width and height are at most 65535");
  if (width * height > kMaxPicturePixels) throw CommandError(path + ": " + size + " are too many");
}
