#include "kit/pictures/png.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "kit/errors.h"
#include "kit/files.h"

namespace {

constexpr char kSoftwareKey[] = "Software", kSoftware[] = "kpg";
constexpr std::string_view kSoftwareChunk("tEXtSoftware\0kpg", 16);  // what these become

void append(png_structp png, png_bytep bytes, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), bytes, bytes + size);
}

[[noreturn]] void fail(png_structp png, png_const_charp message) {
  throw KitError(*static_cast<const std::string*>(png_get_error_ptr(png)), message);
}

// The library says nothing more when it gets no memory for what it begins with.
void needs(const void* made) {
  if (!made) throw std::bad_alloc();
}

// The colours of a picture that has few, in the order in which they come, and each pixel's number among them.
struct Palette {
  std::vector<png_color> colors;
  std::vector<uint8_t> pixels;
};

constexpr size_t kMostColors = 256;

png_color colorOf(uint32_t pixel) { return {uint8_t(pixel >> 16), uint8_t(pixel >> 8), uint8_t(pixel)}; }

std::optional<Palette> paletteOf(const std::vector<uint32_t>& pixels) {
  struct Slot {
    uint32_t key = 0;  // the colour with a bit above it; 0 for none
    uint8_t number = 0;
  };
  std::array<Slot, 4 * kMostColors> slots;
  Palette palette;
  palette.pixels.resize(pixels.size());
  Slot last;
  for (size_t i = 0; i < pixels.size(); ++i) {
    const uint32_t key = (pixels[i] & 0xFFFFFF) | 0x1000000;
    if (key != last.key) {
      size_t at = (key * 0x9E3779B1u) >> 22;
      while (slots[at].key != key && slots[at].key != 0) at = (at + 1) % slots.size();
      if (slots[at].key == 0) {
        if (palette.colors.size() == kMostColors) return {};
        slots[at] = {key, uint8_t(palette.colors.size())};
        palette.colors.push_back(colorOf(key));
      }
      last = slots[at];
    }
    palette.pixels[i] = last.number;
  }
  return palette;
}

int bitsFor(size_t colors) { return colors <= 2 ? 1 : colors <= 4 ? 2 : colors <= 16 ? 4 : 8; }

void writeRows(png_structp png, int width, int height, const Palette& palette) {
  png_set_packing(png);
  for (int y = 0; y < height; ++y) png_write_row(png, palette.pixels.data() + size_t(y) * size_t(width));
}

void writeRows(png_structp png, int width, int height, const std::vector<uint32_t>& pixels, bool alpha) {
  std::vector<uint8_t> row(size_t(width) * 4);
  const uint32_t* in = pixels.data();
  for (int y = 0; y < height; ++y) {
    uint8_t* out = row.data();
    for (const uint32_t* end = in + width; in != end; ++in) {
      *out++ = uint8_t(*in >> 16);
      *out++ = uint8_t(*in >> 8);
      *out++ = uint8_t(*in);
      if (alpha) *out++ = uint8_t(*in >> 24);
    }
    png_write_row(png, row.data());
  }
}

std::vector<uint8_t> encode(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels,
                            bool alpha, PngForm form) {
  const std::optional<Palette> palette = alpha || form == PngForm::trueColor ? std::nullopt : paletteOf(pixels);
  std::vector<uint8_t> file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, const_cast<std::string*>(&path), fail, nullptr);
  needs(png);
  png_infop info = png_create_info_struct(png);
  struct Closer {
    png_structp* png;
    png_infop* info;
    ~Closer() { png_destroy_write_struct(png, info); }
  } closer{&png, &info};
  needs(info);

  png_set_write_fn(png, &file, append, nullptr);
  png_set_compression_level(png, 3);  // pages are flat: more effort takes longer and saves little
  png_set_filter(png, 0, PNG_FILTER_NONE);
  const int kind = palette ? PNG_COLOR_TYPE_PALETTE : alpha ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB;
  png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), palette ? bitsFor(palette->colors.size()) : 8, kind,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (palette) png_set_PLTE(png, info, palette->colors.data(), int(palette->colors.size()));
  png_text software{};
  software.compression = PNG_TEXT_COMPRESSION_NONE;
  software.key = const_cast<char*>(kSoftwareKey);
  software.text = const_cast<char*>(kSoftware);
  png_set_text(png, info, &software, 1);
  png_write_info(png, info);
  if (palette)
    writeRows(png, width, height, *palette);
  else
    writeRows(png, width, height, pixels, alpha);
  png_write_end(png, info);
  return file;
}

// A file as the library reads it, and its name for errors.
struct Input {
  const std::string& path;
  const std::vector<uint8_t>& bytes;
  size_t at = 0;
};

void take(png_structp png, png_bytep bytes, png_size_t size) {
  auto* input = static_cast<Input*>(png_get_io_ptr(png));
  if (size > input->bytes.size() - input->at) throw KitError(input->path, "it is cut off");
  std::copy_n(input->bytes.data() + input->at, size, bytes);
  input->at += size;
}

[[noreturn]] void failInput(png_structp png, png_const_charp message) {
  throw KitError(static_cast<Input*>(png_get_error_ptr(png))->path, message);
}

void ignore(png_structp, png_const_charp) {}

// Whatever the file has, rows come as bytes R G B A.
void askForRgba(png_structp png) {
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
}

}  // namespace

bool isPng(const std::vector<uint8_t>& bytes) { return bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0; }

// By the chunks alone, which lie before the pixels; a damaged picture is nobody's.
bool isKitPng(const std::vector<uint8_t>& bytes) {
  constexpr size_t kSignature = 8, kAroundData = 12;  // length and type before a chunk's data, a checksum after it
  const std::string_view file(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (!isPng(bytes)) return false;
  for (size_t at = kSignature; at + kAroundData <= file.size();) {
    const size_t length = png_get_uint_32(bytes.data() + at);
    const std::string_view chunk = file.substr(at + 4, 4 + length);
    if (chunk == kSoftwareChunk) return true;
    if (chunk.starts_with("IDAT")) return false;
    at += kAroundData + length;
  }
  return false;
}

Picture decodePng(const std::string& path, const std::vector<uint8_t>& bytes) {
  Input input{path, bytes};
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &input, failInput, ignore);
  needs(png);
  png_infop info = png_create_info_struct(png);
  struct Closer {
    png_structp* png;
    png_infop* info;
    ~Closer() { png_destroy_read_struct(png, info, nullptr); }
  } closer{&png, &info};
  needs(info);

  png_set_read_fn(png, &input, take);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);  // ours are lower and say so better
  png_read_info(png, info);
  Picture picture{png_get_image_width(png, info), png_get_image_height(png, info), {}};
  checkPictureSize(path, picture.width, picture.height);
  askForRgba(png);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);

  const size_t count = size_t{picture.width} * picture.height;
  std::vector<uint8_t> rgba(count * 4);
  std::vector<png_bytep> rows(picture.height);
  for (size_t y = 0; y < rows.size(); ++y) rows[y] = rgba.data() + y * picture.width * 4;
  png_read_image(png, rows.data());
  png_read_end(png, nullptr);

  picture.pixels.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* p = rgba.data() + 4 * i;
    picture.pixels[i] = uint32_t(p[3]) << 24 | uint32_t(p[0]) << 16 | uint32_t(p[1]) << 8 | p[2];
  }
  return picture;
}

std::vector<uint8_t> encodePng(int width, int height, const std::vector<uint32_t>& pixels, PngForm form) {
  return encode("the picture", width, height, pixels, false, form);
}

void writePng(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels) {
  const std::vector<uint8_t> bytes = encode(path, width, height, pixels, false, PngForm::smallest);
  writeFile(path, bytes.data(), bytes.size());
}

void writePngWithAlpha(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels) {
  const std::vector<uint8_t> bytes = encode(path, width, height, pixels, true, PngForm::trueColor);
  writeFile(path, bytes.data(), bytes.size());
}
