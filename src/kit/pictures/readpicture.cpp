#include "kit/pictures/readpicture.h"

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/picturekind.h"
#include "kit/pictures/png.h"

Picture readPicture(const std::string& path) {
  const std::vector<uint8_t> bytes = readFile(path);
  if (isPng(bytes)) return decodePng(path, bytes);
  if (isGif(bytes)) return decodeGif(path, bytes);
  const std::string kind = describePictureFile(bytes);
  throw KitError(path, kind.empty() ? "neither a PNG nor a GIF picture"
                                    : "this is " + kind + "; only PNG and GIF pictures can be read");
}
