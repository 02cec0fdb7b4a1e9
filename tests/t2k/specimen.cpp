// Writes a specimen sheet of a font, to be looked at: sizes 10 to 48, monochrome and grey, hinted and not.
//
//   t2k_specimen FONT OUT.png [t1] [ZOOM]
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "t2k/openfont.h"

namespace {

constexpr int kSizes[] = {10, 12, 14, 16, 20, 24, 32, 48};
constexpr const char* kText = "Hamburgefonstiv 0123456789 xyz&@$ QKWAV";

struct Picture {
  int width, height;
  std::vector<uint8_t> grey;  // 255 is white

  Picture(int w, int h) : width(w), height(h), grey(size_t(w) * h, 255) {}
  void Darken(int x, int y, int coverage) {  // of 120
    if (x < 0 || y < 0 || x >= width || y >= height) return;
    uint8_t& pixel = grey[size_t(y) * width + x];
    pixel = uint8_t(std::max(0, pixel - coverage * 255 / 120));
  }
};

void DrawGlyph(const T2K* t, Picture& picture, int penX, int baseline, bool isGrey) {
  if (!t->baseAddr) return;
  const int left = penX + (t->fLeft26Dot6 >> 6), top = baseline - (t->fTop26Dot6 >> 6);
  for (int y = 0; y < t->height; ++y) {
    const uint8_t* row = t->baseAddr + y * t->rowBytes;
    for (int x = 0; x < t->width; ++x) {
      const int coverage = isGrey ? row[x] : row[x >> 3] & (0x80 >> (x & 7)) ? 120 : 0;
      picture.Darken(left + x, top + y, coverage);
    }
  }
}

void DrawLine(OpenFont& f, Picture& picture, int x, int baseline, int greyLevel, int cmd) {
  hsFixed pen = hsFixed(x) << 16;
  for (const char* c = kText; *c; ++c) {
    if (!f.Render(*c, greyLevel, cmd | kT2KBitmap)) {
      std::fprintf(stderr, "error %d at '%c'\n", f.err, *c);
      return;
    }
    DrawGlyph(f.t, picture, (pen + 0x8000) >> 16, baseline, greyLevel > 0);
    pen += f.t->xAdvanceWidth16Dot16;
  }
}

bool WritePng(const Picture& picture, int zoom, const char* path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = unsigned(picture.width * zoom);
  image.height = unsigned(picture.height * zoom);
  image.format = PNG_FORMAT_GRAY;
  std::vector<uint8_t> large(size_t(image.width) * image.height);
  for (unsigned y = 0; y < image.height; ++y) {
    for (unsigned x = 0; x < image.width; ++x) {
      large[size_t(y) * image.width + x] = picture.grey[size_t(y / zoom) * picture.width + x / zoom];
    }
  }
  return png_image_write_to_file(&image, path, 0, large.data(), 0, nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return std::fprintf(stderr, "usage: %s FONT OUT.png [t1] [ZOOM]\n", argv[0]), 2;
  const bool isType1 = argc > 3 && std::strcmp(argv[3], "t1") == 0;
  const int zoom = std::max(1, argc > 3 ? std::atoi(argv[argc - 1]) : 1);
  OpenFont f(ReadFontFile(argv[1]), isType1 ? kFontType1 : kFontTypeSfnt);
  if (!f.t) return std::fprintf(stderr, "can't open: error %d\n", f.err), 1;

  Picture picture(1100, 1000);
  int y = 4;
  for (int size : kSizes) {
    f.SetSize(size);
    for (const auto& [greyLevel, cmd] : {std::pair{0, 0}, {0, int(kT2KGridFit)}, {3, 0}, {3, int(kT2KGridFit)}}) {
      y += size * 5 / 4;
      DrawLine(f, picture, 4, y, greyLevel, cmd);
    }
    y += size / 3;
  }
  return WritePng(picture, zoom, argv[2]) ? 0 : 1;
}
