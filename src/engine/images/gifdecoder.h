// The GIF format as published (87a and 89a). Rows come as the player takes them, wherever their image lies; what else a
// file says of an image can be asked for.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

enum class GifError {
  none = 0,
  badCodeSize = -1,
  truncatedColorTable = -2,
  badCode = -3,
  dictionaryOverflow = -4,
  badSignature = -5,
  truncatedDescriptor = -6,
  outOfMemory = -7,
  endOfBlocks = -8,  // the data of an image has ended; no error
  endOfFile = -9,
  badGraphicControl = -10,
};

struct GifImage {
  int number = -1;  // from 0; -1 before the first
  uint32_t left, top, width, height;
  bool interlaced;
  int colorCount = 0;                  // of its own table or else of the global one; 0 for neither
  std::array<uint32_t, 256> colors{};  // 0xRRGGBB00
  int transparent = -1;                // index; -1 for none
};

class GifDecoder {
 public:
  // Reads up to `size` more bytes of the file; fewer mean that it has ended.
  using Source = std::function<size_t(uint8_t* buffer, size_t size)>;
  // The picture's size and its global table, 0xRRGGBB00 with zeros beyond its true size, null when there is none. False
  // for no memory.
  using Begin = std::function<bool(uint32_t width, uint32_t height, const std::array<uint32_t, 256>* colors)>;
  // A finished row, by its number in the picture; `count` indices.
  using Row = std::function<void(uint32_t y, const uint8_t* indices, uint32_t count)>;

  explicit GifDecoder(Source s) : source(std::move(s)) {}

  GifError decode(const Begin& begin, const Row& row);

  // The image that rows come from now; the last one when decode() has returned.
  const GifImage& image() const { return current; }

 private:
  bool fill();  // the buffer; false at the end of the file
  int next();   // a byte, or -1 at the end of the file
  bool read(uint8_t* bytes, size_t size);
  GifError readColors(uint8_t packed, std::array<uint32_t, 256>* colors);
  GifError readExtension();
  GifError readImage(const Row& row);
  GifError readPixels(const Row& row);
  GifError skipBlocks();

  Source source;
  std::array<uint8_t, 1024> buffer;
  size_t position = 0, filled = 0;
  GifImage current;
  std::array<uint32_t, 256> global{};
  int globalCount = 0;
  int nextTransparent = -1;  // announced before the image that it is for
};
