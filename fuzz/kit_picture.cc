// Pictures and colour tables as the kit reads them, and writes them again: the same pixels come back.
#include <cstdlib>

#include "gfx/foundation/hsbytes.h"
#include "kit/errors.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/enginecolors.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/png.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kFewPixels = 4096;      // beyond them only the reading is tried
constexpr size_t kManyPixels = 1 << 18;  // beyond them it takes long to make so many, and shows nothing new

void check(bool holds) {
  if (!holds) std::abort();
}

void tryPicture(const Picture& picture, const Bytes& bytes) {
  if (picture.pixels.size() > kFewPixels) return;
  const std::vector<uint32_t> colors =
      toEngineColors(picture, bytes.size() % 2 ? std::optional(0x102030) : std::nullopt);
  const std::vector<uint32_t> table = makeClut(colors, 3 + bytes.size() % 60);
  check(isKitClut(clutBytes(table)) && parseClut(clutBytes(table)) == table);
  for (const PngForm form : {PngForm::smallest, PngForm::trueColor}) {
    const Bytes written = encodePng(int(picture.width), int(picture.height), picture.pixels, form);
    const Picture again = decodePng("f", written);
    check(isKitPng(written) && again.width == picture.width && again.height == picture.height);
    for (size_t i = 0; i < again.pixels.size(); ++i) check(((again.pixels[i] ^ picture.pixels[i]) & 0xFFFFFF) == 0);
  }
}

// The size stands after the signature.
void tryGif(const Bytes& bytes) {
  const uint64_t pixels = bytes.size() < 10 ? 0 : uint64_t{hsLittle16(&bytes[6])} * hsLittle16(&bytes[8]);
  if (pixels <= kManyPixels || pixels > kMaxPicturePixels) tryPicture(decodeGif("f", bytes), bytes);
}

void tryKpx(const KpxFile& picture) {
  const KpxFile again = parseKpx("f", kpxBytes(picture));
  check(again.width == picture.width && again.height == picture.height && again.clut == picture.clut &&
        again.pixels == picture.pixels);
}

void tryClut(const Bytes& bytes) {
  const std::vector<uint32_t> colors = parseClut(bytes);
  isKitClut(bytes);
  check(parseClut(clutBytes(colors)) == colors);
  readClut("f", bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes bytes(data, data + size);
  check(!(isGif(bytes) && isPng(bytes)));
  isKitPng(bytes);
  for (const auto& read : {
           +[](const Bytes& b) { tryPicture(decodePng("f", b), b); },
           +[](const Bytes& b) { tryGif(b); },
           +[](const Bytes& b) { summarizeGif("f", b); },
           +[](const Bytes& b) { tryKpx(parseKpx("f", b)); },
           +[](const Bytes& b) { tryClut(b); },
       }) {
    try {
      read(bytes);
    } catch (const KitError&) {  // as it should
    }
  }
  return 0;
}
