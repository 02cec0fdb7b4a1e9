// Writes a specimen sheet of a font, to be looked at: each size in monochrome, monochrome hinted, grey, grey hinted.
//
//   t2k_specimen FONT OUT.png [t1] [zoom=N] [sizes=N,N...] [text=TEXT] [width=PIXELS]
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "t2k/openfont.h"

namespace {

struct Options {
  int fontType = kFontTypeSfnt;
  int zoom = 1;
  int width = 1100;
  std::vector<int> sizes = {10, 12, 14, 16, 20, 24, 32, 48};
  std::string text = "Hamburgefonstiv 0123456789 xyz&@$ QKWAV";
};

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

void DrawLine(OpenFont& f, Picture& picture, const std::string& text, int baseline, int greyLevel, int cmd) {
  hsFixed pen = 4 << 16;
  for (const char c : text) {
    if (!f.Render(c, greyLevel, cmd | kT2KBitmap)) {
      std::fprintf(stderr, "error %d at '%c'\n", f.err, c);
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

bool ReadOption(const std::string& argument, Options* options) {
  const auto value = [&](const char* key) {
    const std::string prefix = std::string(key) + "=";
    return argument.rfind(prefix, 0) == 0 ? argument.substr(prefix.size()) : std::string();
  };
  if (argument == "t1") {
    options->fontType = kFontType1;
  } else if (const std::string zoom = value("zoom"); !zoom.empty()) {
    options->zoom = std::max(1, std::stoi(zoom));
  } else if (const std::string width = value("width"); !width.empty()) {
    options->width = std::max(1, std::stoi(width));
  } else if (const std::string text = value("text"); !text.empty()) {
    options->text = text;
  } else if (std::string sizes = value("sizes"); !sizes.empty()) {
    options->sizes.clear();
    for (char* at = sizes.data(); *at; at += *at == ',') options->sizes.push_back(int(std::strtol(at, &at, 10)));
  } else {
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  bool understood = argc >= 3;
  for (int i = 3; i < argc; ++i) understood &= ReadOption(argv[i], &options);
  if (!understood) {
    std::fprintf(stderr, "usage: %s FONT OUT.png [t1] [zoom=N] [sizes=N,N...] [text=TEXT] [width=PIXELS]\n", argv[0]);
    return 2;
  }
  OpenFont f(ReadFontFile(argv[1]), options.fontType);
  if (!f.t) return std::fprintf(stderr, "can't open: error %d\n", f.err), 1;

  int height = 8;
  for (int size : options.sizes) height += size * 5 / 4 * 4 + size / 3;
  Picture picture(options.width, height);
  int y = 0;
  for (int size : options.sizes) {
    f.SetSize(size);
    for (const auto& [greyLevel, cmd] : {std::pair{0, 0}, {0, int(kT2KGridFit)}, {3, 0}, {3, int(kT2KGridFit)}}) {
      y += size * 5 / 4;
      DrawLine(f, picture, options.text, y, greyLevel, cmd);
    }
    y += size / 3;
  }
  return WritePng(picture, options.zoom, argv[2]) ? 0 : 1;
}
