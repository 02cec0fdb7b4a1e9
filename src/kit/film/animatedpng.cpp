#include <zlib.h>

#include <algorithm>
#include <string_view>

#include "kit/diff/picturediff.h"
#include "kit/film/filmfiles.h"
#include "kit/pictures/png.h"

namespace {

constexpr uint64_t kLongestDelay = 0xFFFF;  // milliseconds
constexpr size_t kSignature = 8;

std::string bigEndian(uint32_t n, int bytes = 4) {
  std::string out;
  for (int shift = 8 * bytes - 8; shift >= 0; shift -= 8) out += char(n >> shift);
  return out;
}

std::string chunk(std::string_view type, std::string_view data) {
  std::string body(type);
  body += data;
  const auto sum = uint32_t(crc32(0, reinterpret_cast<const Bytef*>(body.data()), uInt(body.size())));
  return bigEndian(uint32_t(data.size())) + body + bigEndian(sum);
}

// A picture taken apart: what stands before the pixels, and these, packed.
struct PngParts {
  std::string head;  // signature and whole chunks
  std::string pixels;
};

PngParts partsOf(const Picture& picture) {
  // All frames have the head of the first, so they have to be of one form.
  const std::vector<uint8_t> bytes =
      encodePng(int(picture.width), int(picture.height), picture.pixels, PngForm::trueColor);
  const std::string_view file(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  PngParts parts{std::string(file.substr(0, kSignature)), ""};
  for (size_t at = kSignature; at < file.size();) {
    const size_t length = size_t{bytes[at]} << 24 | bytes[at + 1] << 16 | bytes[at + 2] << 8 | bytes[at + 3];
    const std::string_view type = file.substr(at + 4, 4);
    if (type == "IDAT") {
      parts.pixels += file.substr(at + 8, length);
    } else if (parts.pixels.empty()) {
      parts.head += file.substr(at, length + 12);
    }
    at += length + 12;
  }
  return parts;
}

}  // namespace

void AnimatedPng::show(const Picture& picture, uint64_t milliseconds) {
  Bounds area = changedArea(shown, picture);
  if (area.w == 0) area = {0, 0, 1, 1};
  for (; milliseconds > 0; area = {0, 0, 1, 1}) {
    const uint64_t delay = std::min(milliseconds, kLongestDelay);
    emit(picture, area, uint16_t(delay));
    milliseconds -= delay;
  }
  shown = picture;
}

void AnimatedPng::emit(const Picture& picture, const Bounds& area, uint16_t milliseconds) {
  const PngParts parts = partsOf(cropPicture(picture, area));
  if (count == 0) file = parts.head;
  const std::string_view kKeepAndReplace("\0\0", 2);  // the picture stays, and this takes its place
  frames += chunk("fcTL", bigEndian(sequence++) + bigEndian(uint32_t(area.w)) + bigEndian(uint32_t(area.h)) +
                              bigEndian(uint32_t(area.x)) + bigEndian(uint32_t(area.y)) + bigEndian(milliseconds, 2) +
                              bigEndian(1000, 2) + std::string(kKeepAndReplace));
  frames += count == 0 ? chunk("IDAT", parts.pixels) : chunk("fdAT", bigEndian(sequence++) + parts.pixels);
  ++count;
}

void AnimatedPng::finish() {
  constexpr uint32_t kForEver = 0;
  file += chunk("acTL", bigEndian(count) + bigEndian(kForEver)) + frames + chunk("IEND", "");
  frames.clear();
}
