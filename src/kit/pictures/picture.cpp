#include "kit/pictures/picture.h"

#include "kit/errors.h"

void checkPictureSize(const std::string& path, uint64_t width, uint64_t height) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
  if (width == 0 || height == 0) throw KitError(path, size + " show nothing");
  if (width > UINT16_MAX || height > UINT16_MAX)
    throw KitError(path, size + " are too many; width and height are at most 65535");
  if (width * height > kMaxPicturePixels) throw KitError(path, size + " are too many");
}
