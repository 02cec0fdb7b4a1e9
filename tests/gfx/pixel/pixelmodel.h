// What the pixel tests share: surfaces of random pixels, and slow rewrites of the pipeline's arithmetic on single
// channels.
#pragma once

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/vector/hsregion.h"

struct Random {
  explicit Random(unsigned seed) : engine(seed) {}
  int Below(int n) { return int(engine() % unsigned(n)); }
  int Between(int low, int high) { return low + Below(high - low + 1); }
  bool Chance(int percent) { return Below(100) < percent; }
  uint8_t Byte() { return Chance(20) ? 0 : Chance(20) ? 255 : uint8_t(engine()); }  // the ends matter most
  std::mt19937 engine;
};

// Channels of 32-bit and of 16-bit pixels.
struct Channels {
  int a, r, g, b;
};
inline Channels Split32(uint32_t c) { return {int(c >> 24), int(c >> 16 & 255), int(c >> 8 & 255), int(c & 255)}; }
inline uint32_t Join32(Channels c) {
  return uint32_t(c.a) << 24 | uint32_t(c.r) << 16 | uint32_t(c.g) << 8 | uint32_t(c.b);
}
inline Channels Split16(uint32_t p) { return {0, int(p / 1024), int(p / 32 % 32), int(p % 32)}; }
inline uint32_t Join16(int r, int g, int b) { return uint32_t(r * 1024 | g * 32 | b) & 0xFFFF; }
// A 32-bit pixel shifted into 16 bits: the red that arrives is alpha's lowest bit and red's upper five.
inline uint32_t Pack(uint32_t p) {
  const Channels c = Split32(p);
  return Join16(c.a % 2 * 32 + c.r / 8, c.g / 8, c.b / 8);
}

inline int Blend(int src, int dst, int scale) { return dst + int(std::floor((src - dst) * scale / 256.0)); }
inline uint32_t Scale32(uint32_t c, int scale) {
  const Channels s = Split32(c);
  return Join32({s.a * scale / 256, s.r * scale / 256, s.g * scale / 256, s.b * scale / 256});
}

// A palette with a search for the nearest index.
struct Palette {
  Palette(Random& random, uint32_t count) : table(new hsGColorTable), colors(256, 0), cells(4096, -1) {
    for (uint32_t i = 0; i < count; ++i) colors[i] = uint32_t(random.engine());
    table->SetCount(count);
    table->SetColors(0, count, colors.data());
    size = count;
  }
  Palette(const Palette&) = delete;
  ~Palette() { table->UnRef(); }

  uint32_t Nearest(int r, int g, int b) const {
    int& known = cells[size_t(r / 16 * 256 + g / 16 * 16 + b / 16)];
    if (known >= 0) return uint32_t(known);
    int best = 1 << 30;
    for (uint32_t i = 0; i < size; ++i) {
      const Channels c = Split32(colors[i]);
      const int dr = c.r - r / 16 * 17, dg = c.g - g / 16 * 17, db = c.b - b / 16 * 17;
      if (dr * dr + dg * dg + db * db < best) {
        best = dr * dr + dg * dg + db * db;
        known = int(i);
      }
    }
    return uint32_t(known);
  }
  uint32_t Nearest(uint32_t c) const { return Nearest(int(c >> 16 & 255), int(c >> 8 & 255), int(c & 255)); }

  hsGColorTable* table;
  std::vector<uint32_t> colors;
  uint32_t size;
  mutable std::vector<int> cells;
};

// A bitmap, with the palette if it holds indices, with pixels of its own and a random tail after each row, so that
// stray writes show.
class Surface {
 public:
  Surface(uint8_t config, int width, int height, Random& random, const Palette* palette = nullptr) : bitmap(config) {
    bitmap.fWidth = uint32_t(width);
    bitmap.fHeight = uint32_t(height);
    bitmap.fRowBytes = uint32_t((width * bitmap.fPixelSize / 8 + 11) & ~3);
    if (config == hsGBitmap::kConfig_Index8 && palette) bitmap.SetColorTable(palette->table);
    words.resize(bitmap.ImageSize() / 4);
    for (uint32_t& word : words) word = uint32_t(random.engine());
    bitmap.fImage = words.data();
    if (random.Chance(50)) Repeat(random);
  }
  Surface(const Surface& other) : bitmap(other.bitmap), words(other.words) { bitmap.fImage = words.data(); }
  Surface& operator=(const Surface&) = delete;

  int Width() const { return int(bitmap.fWidth); }
  int Height() const { return int(bitmap.fHeight); }
  hsIntRect Bounds() const { return {0, 0, Width(), Height()}; }

  uint32_t Get(int x, int y) const {
    switch (bitmap.fPixelSize) {
      case 8: return bitmap.Row<uint8_t>(y)[x];
      case 16: return bitmap.Row<uint16_t>(y)[x];
      default: return bitmap.Row<uint32_t>(y)[x];
    }
  }
  void Set(int x, int y, uint32_t value) {
    switch (bitmap.fPixelSize) {
      case 8: bitmap.Row<uint8_t>(y)[x] = uint8_t(value); break;
      case 16: bitmap.Row<uint16_t>(y)[x] = uint16_t(value); break;
      default: bitmap.Row<uint32_t>(y)[x] = value;
    }
  }

  bool operator==(const Surface& other) const { return words == other.words; }

  hsGBitmap bitmap;

 private:
  // Runs of equal pixels, for what remembers the last one.
  void Repeat(Random& random) {
    for (int y = 0; y < Height(); ++y)
      for (int x = 1; x < Width(); ++x)
        if (random.Chance(60)) Set(x, y, Get(x - 1, y));
  }

  std::vector<uint32_t> words;
};

inline void PrintTo(const Surface&, std::ostream* out) { *out << "pixels"; }

// Colours through a mode onto a row of the model, from x on. The modes have a test of their own and are trusted here.
inline void Xfer(hsGXferMode& mode, const std::vector<uint32_t>& colors, int x, int y, const uint8_t* alpha,
                 Surface* model) {
  const int count = int(colors.size());
  const hsGBitmap& bitmap = model->bitmap;
  switch (bitmap.fConfig) {
    case hsGBitmap::kConfig_RGB16: return mode.Xfer16(count, colors.data(), bitmap.Row<uint16_t>(y) + x, alpha);
    case hsGBitmap::kConfig_Index8:
      return mode.Xfer8(count, colors.data(), bitmap.Row<uint8_t>(y) + x, bitmap.fColorTable.get(), alpha);
    case hsGBitmap::kConfig_Alpha8: {
      std::vector<uint8_t> bytes;
      for (uint32_t c : colors) bytes.push_back(uint8_t(c >> 24));
      return mode.XferA(count, bytes.data(), bitmap.Row<uint8_t>(y) + x, alpha);
    }
    default: return mode.Xfer32(count, colors.data(), bitmap.Row<uint32_t>(y) + x, alpha);
  }
}

// A few rectangles out of or-ed and cut-out ones; sometimes one, sometimes none at all.
inline hsRegion RandomRegion(Random& random, const hsIntRect& bounds) {
  hsRegion region;
  for (int i = random.Below(5); i > 0; --i) {
    const int left = random.Below(bounds.fRight), top = random.Below(bounds.fBottom);
    const hsIntRect rect{left, top, random.Between(left + 1, bounds.fRight), random.Between(top + 1, bounds.fBottom)};
    if (random.Chance(70)) {
      region.Union(region, rect);
    } else {
      region.Difference(region, rect);
    }
  }
  return region;
}
