#include <gif_lib.h>

#include <algorithm>
#include <map>

#include "kit/diff/picturediff.h"
#include "kit/errors.h"
#include "kit/film/filmfiles.h"

namespace {

constexpr size_t kMostColors = 256;
constexpr uint64_t kLongestDelay = 0xFFFF;  // hundredths of a second

using Palette = std::map<uint32_t, GifByteType>;  // 0x00RRGGBB

// Adds the colours of the area, as long as they fit. False, with some of them added, when they don't.
bool addColors(const Picture& picture, const Bounds& area, Palette& palette) {
  for (int32_t y = area.y; y < area.y + area.h; ++y)
    for (int32_t x = area.x; x < area.x + area.w; ++x) {
      const uint32_t color = picture.pixels[size_t(y) * picture.width + size_t(x)];
      if (palette.contains(color)) continue;
      if (palette.size() == kMostColors) return false;
      palette.emplace(color, GifByteType(palette.size()));
    }
  return true;
}

// Cuts the area in halves until each piece has few enough colours.
void cut(const Picture& picture, const Bounds& area, std::vector<Bounds>& pieces) {
  Palette palette;
  if (addColors(picture, area, palette)) return pieces.push_back(area);
  Bounds first = area, second = area;
  if (area.h > 1) {
    first.h = area.h / 2;
    second.y += first.h, second.h -= first.h;
  } else {
    first.w = area.w / 2;
    second.x += first.w, second.w -= first.w;
  }
  cut(picture, first, pieces);
  cut(picture, second, pieces);
}

int append(GifFileType* gif, const GifByteType* bytes, int size) {
  static_cast<std::string*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), size_t(size));
  return size;
}

}  // namespace

struct GifAnimation::Encoder {
  explicit Encoder(std::string& file) {
    int error = 0;
    gif = EGifOpen(&file, append, &error);
    if (!gif) throw KitError(std::string("the film: ") + GifErrorString(error));
    EGifSetGifVersion(gif, true);
  }
  ~Encoder() { close(); }

  void check(int done) const {
    if (done == GIF_ERROR) throw KitError(std::string("the film: ") + GifErrorString(gif->Error));
  }

  void begin(const Picture& picture) {
    check(EGifPutScreenDesc(gif, int(picture.width), int(picture.height), 8, 0, nullptr));
    const char kForEver[] = {1, 0, 0};
    check(EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE));
    check(EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0"));
    check(EGifPutExtensionBlock(gif, 3, kForEver));
    check(EGifPutExtensionTrailer(gif));
  }

  void put(const Picture& picture, const Bounds& area, uint64_t hundredths) {
    Palette palette;
    addColors(picture, area, palette);
    int size = 2;
    while (size_t(size) < palette.size()) size *= 2;
    std::vector<GifColorType> colors(static_cast<size_t>(size));
    for (const auto& [color, index] : palette)
      colors[index] = {GifByteType(color >> 16), GifByteType(color >> 8), GifByteType(color)};
    const GraphicsControlBlock control{DISPOSE_DO_NOT, false, int(hundredths), NO_TRANSPARENT_COLOR};
    GifByteType extension[4];
    check(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(EGifGCBToExtension(&control, extension)), extension));
    const std::unique_ptr<ColorMapObject, void (*)(ColorMapObject*)> map(GifMakeMapObject(size, colors.data()),
                                                                         GifFreeMapObject);
    check(EGifPutImageDesc(gif, area.x, area.y, area.w, area.h, false, map.get()));
    std::vector<GifByteType> row(static_cast<size_t>(area.w));
    for (int32_t y = area.y; y < area.y + area.h; ++y) {
      const uint32_t* in = &picture.pixels[size_t(y) * picture.width + size_t(area.x)];
      std::transform(in, in + area.w, row.begin(), [&](uint32_t color) { return palette.at(color); });
      check(EGifPutLine(gif, row.data(), area.w));
    }
  }

  void close() {
    int error = 0;
    if (gif) EGifCloseFile(gif, &error);
    gif = nullptr;
  }

  GifFileType* gif;
};

GifAnimation::GifAnimation() : encoder(std::make_unique<Encoder>(file)) {}

GifAnimation::~GifAnimation() = default;

// The times of all pictures are rounded, not their durations, so that no error adds up.
void GifAnimation::show(const Picture& picture, uint64_t milliseconds) {
  const auto hundredths = [](uint64_t ms) { return (ms + 5) / 10; };
  const uint64_t begin = hundredths(elapsed), end = hundredths(elapsed += milliseconds);
  skipped = end == begin ? picture : Picture{};
  if (end > begin) emit(picture, end - begin);
}

void GifAnimation::emit(const Picture& picture, uint64_t left) {
  if (shown.width == 0) encoder->begin(picture);
  Bounds area = changedArea(shown, picture);
  if (area.w == 0) area = {0, 0, 1, 1};  // what was between had no time
  std::vector<Bounds> pieces;
  cut(picture, area, pieces);
  for (size_t i = 0; i + 1 < pieces.size(); ++i) encoder->put(picture, pieces[i], 0);
  for (Bounds last = pieces.back(); left > 0; last = {0, 0, 1, 1}) {
    const uint64_t delay = std::min(left, kLongestDelay);
    encoder->put(picture, last, delay);
    left -= delay;
  }
  shown = picture;
}

// The last picture shows how it ended, however short it was.
void GifAnimation::finish() {
  if (skipped.width > 0) emit(skipped, 1);
  encoder->close();
}
