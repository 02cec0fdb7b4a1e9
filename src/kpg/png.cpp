#include "kpg/png.h"

#include <png.h>

#include <memory>

#include "kpg/errors.h"
#include "kpg/files.h"

namespace {

void append(png_structp png, png_bytep bytes, png_size_t size) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), bytes, bytes + size);
}

[[noreturn]] void fail(png_structp, png_const_charp message) { throw CommandError(message); }

}  // namespace

void writePng(const std::string& path, int width, int height, const std::vector<uint32_t>& pixels) {
  std::vector<uint8_t> file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, nullptr);
  png_infop info = png_create_info_struct(png);
  struct Closer {
    png_structp* png;
    png_infop* info;
    ~Closer() { png_destroy_write_struct(png, info); }
  } closer{&png, &info};

  png_set_write_fn(png, &file, append, nullptr);
  png_set_compression_level(png, 3);  // pages are flat: more effort takes longer and saves little
  png_set_filter(png, 0, PNG_FILTER_NONE);
  png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  std::vector<uint8_t> row(size_t(width) * 3);
  for (int y = 0; y < height; ++y) {
    const uint32_t* in = pixels.data() + size_t(y) * size_t(width);
    for (size_t x = 0; x < size_t(width); ++x) {
      row[3 * x] = uint8_t(in[x] >> 16);
      row[3 * x + 1] = uint8_t(in[x] >> 8);
      row[3 * x + 2] = uint8_t(in[x]);
    }
    png_write_row(png, row.data());
  }
  png_write_end(png, info);
  writeFile(path, file.data(), file.size());
}
