#include "engine/images/gifdecoder.h"

#include <algorithm>
#include <utility>

#include "gfx/foundation/hsbytes.h"

namespace {

constexpr int kMaxBits = 12;
constexpr int kMaxCodes = 1 << kMaxBits;
constexpr size_t kHead = 8;  // indices of an entry that are written at one stroke, wanted or not

struct Pass {
  uint32_t start, step;
};
constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
constexpr Pass kPlain[] = {{0, 1}};

int tableSize(uint8_t packed) { return 2 << (packed & 7); }

// Collects indices into rows and passes each on when it is full, in the order of the passes.
class RowSink {
 public:
  RowSink(uint32_t w, uint32_t h, bool interlaced, const GifDecoder::Row& r)
      : width(w),
        height(h),
        emit(r),
        row(w + kHead),
        pass(interlaced ? kInterlaced : kPlain),
        passEnd(interlaced ? std::end(kInterlaced) : std::end(kPlain)),
        y(pass->start) {}

  // Where the next `length` indices, up to kMaxCodes, are to be written; put() then takes them. They go straight into
  // the row where that has space. There is always space for kHead.
  uint8_t* place(size_t length) { return length <= width - filled ? row.data() + filled : overhang.data(); }
  void put(const uint8_t* from, size_t length) {
    if (from != overhang.data()) return advance(length);
    while (length > 0) {
      const size_t part = std::min(length, width - filled);
      std::copy_n(from, part, row.data() + filled);
      advance(part);
      from += part;
      length -= part;
    }
  }

 private:
  void advance(size_t length) {
    filled += length;
    if (filled < width) return;
    filled = 0;
    if (pass == passEnd) return;  // more than the image holds
    emit(y, row.data(), uint32_t(width));
    y += pass->step;
    while (y >= height && ++pass != passEnd) y = pass->start;
  }

  size_t width;
  uint32_t height;
  const GifDecoder::Row& emit;
  std::vector<uint8_t> row;
  std::array<uint8_t, kMaxCodes + kHead> overhang;
  size_t filled = 0;
  const Pass *pass, *passEnd;
  uint32_t y;
};

// The dictionary: each code is a shorter one and a last index.
class Dictionary {
 public:
  explicit Dictionary(int minimum) : clear(1 << minimum), minimumBits(minimum) {
    for (int i = 0; i < clear; ++i) entries[size_t(i)] = {{uint8_t(i)}, 0, 1, uint8_t(i)};
    reset();
  }

  void reset() {
    count = clear + 2;
    bits = minimumBits + 1;
    previous = -1;
  }

  // Passes the indices of the code to the sink, and defines the next code. False for a code that can't be.
  bool expand(int code, RowSink* sink) {
    if (previous < 0) {  // the first after a clear means itself
      if (code >= clear) return false;
    } else {
      if (code > count || (code == count && count >= kMaxCodes)) return false;
      define(entries[size_t(code == count ? previous : code)].head[0]);
    }
    previous = code;
    const Entry* entry = &entries[size_t(code)];
    const size_t length = entry->length;
    uint8_t* out = sink->place(length);
    for (size_t at = length; at > kHead; entry = &entries[entry->prefix]) out[--at] = entry->last;
    std::copy_n(entry->head.data(), kHead, out);
    sink->put(out, length);
    return true;
  }

  const int clear;  // the code that empties it; the next one ends the image
  int bits;         // of the codes now

 private:
  // The next code is the one before, and one index more.
  void define(uint8_t last) {
    if (count == kMaxCodes) return;  // it is full and stays as it is
    Entry& made = entries[size_t(count)];
    const Entry& from = entries[size_t(previous)];
    made = {from.head, uint16_t(previous), uint16_t(from.length + 1), last};
    if (from.length < kHead) made.head[from.length] = last;
    if (++count == 1 << bits && bits < kMaxBits) ++bits;
  }

  struct Entry {
    std::array<uint8_t, kHead> head;  // the first indices, which are all of most entries
    uint16_t prefix, length;
    uint8_t last;
  };
  const int minimumBits;
  int count, previous;
  std::array<Entry, kMaxCodes> entries;
};

}  // namespace

bool GifDecoder::fill() {
  filled = source(buffer.data(), buffer.size());
  position = 0;
  return filled > 0;
}

int GifDecoder::next() {
  if (position == filled && !fill()) return -1;
  return buffer[position++];
}

bool GifDecoder::read(uint8_t* bytes, size_t size) {
  for (; size > 0; --size) {
    const int byte = next();
    if (byte < 0) return false;
    *bytes++ = uint8_t(byte);
  }
  return true;
}

GifError GifDecoder::decode(const Begin& begin, const Row& row) {
  uint8_t signature[6], screen[7];
  if (!read(signature, sizeof signature) || signature[0] != 'G' || signature[1] != 'I' || signature[2] != 'F')
    return GifError::badSignature;
  if (!read(screen, sizeof screen)) return GifError::truncatedDescriptor;
  if (screen[4] & 0x80) {
    if (const GifError error = readColors(screen[4], &global); error != GifError::none) return error;
    globalCount = tableSize(screen[4]);
  }
  if (!begin(hsLittle16(screen), hsLittle16(screen + 2), globalCount ? &global : nullptr)) return GifError::outOfMemory;

  for (;;) {
    GifError error = GifError::none;
    switch (next()) {
      case -1:
      case 0x3B: return GifError::none;
      case 0x21: error = readExtension(); break;
      case 0x2C: error = readImage(row); break;
      default: break;  // a byte between blocks
    }
    if (error != GifError::none) return error;
  }
}

GifError GifDecoder::readColors(uint8_t packed, std::array<uint32_t, 256>* colors) {
  for (size_t i = 0; i < size_t(tableSize(packed)); ++i) {
    uint8_t rgb[3];
    if (!read(rgb, sizeof rgb)) return GifError::truncatedColorTable;
    (*colors)[i] = uint32_t(rgb[0]) << 24 | uint32_t(rgb[1]) << 16 | uint32_t(rgb[2]) << 8;
  }
  return GifError::none;
}

GifError GifDecoder::readExtension() {
  const int label = next();
  if (label < 0) return GifError::endOfFile;
  if (label == 0xF9) {
    const int size = next();
    if (size < 0) return GifError::endOfFile;
    if (size != 4) return GifError::badGraphicControl;
    uint8_t control[4];
    if (!read(control, sizeof control)) return GifError::endOfFile;
    nextTransparent = control[0] & 1 ? control[3] : -1;
  }
  return skipBlocks();
}

GifError GifDecoder::skipBlocks() {
  for (;;) {
    int size = next();
    if (size < 0) return GifError::endOfFile;
    if (size == 0) return GifError::none;
    for (; size > 0; --size)
      if (next() < 0) return GifError::endOfFile;
  }
}

GifError GifDecoder::readImage(const Row& row) {
  uint8_t descriptor[9];
  if (!read(descriptor, sizeof descriptor)) return GifError::truncatedDescriptor;
  const uint8_t packed = descriptor[8];
  current = {current.number + 1,
             hsLittle16(descriptor),
             hsLittle16(descriptor + 2),
             hsLittle16(descriptor + 4),
             hsLittle16(descriptor + 6),
             (packed & 0x40) != 0,
             globalCount,
             global,
             std::exchange(nextTransparent, -1)};
  if (packed & 0x80) {  // a table of its own
    current.colors = {};
    current.colorCount = tableSize(packed);
    if (const GifError error = readColors(packed, &current.colors); error != GifError::none) return error;
  }
  return readPixels(row);
}

GifError GifDecoder::readPixels(const Row& row) {
  const int minimumBits = next();
  if (minimumBits < 0) return GifError::endOfFile;
  if (minimumBits < 2 || minimumBits > 8) return GifError::badCodeSize;
  if (current.width == 0 || current.height == 0) return skipBlocks();

  RowSink sink(current.width, current.height, current.interlaced, row);
  Dictionary dictionary(minimumBits);
  uint64_t bitBuffer = 0;
  int bitCount = 0, blockLeft = 0;
  for (;;) {
    while (bitCount < dictionary.bits) {
      if (blockLeft == 0) {
        blockLeft = next();
        if (blockLeft < 0) return GifError::endOfFile;
        if (blockLeft == 0) return GifError::none;  // the data ends without an end code
      }
      if (position == filled && !fill()) return GifError::endOfFile;
      for (; blockLeft > 0 && position < filled && bitCount <= 56; --blockLeft, bitCount += 8)
        bitBuffer |= uint64_t{buffer[position++]} << bitCount;
    }
    const int code = int(bitBuffer & ((1u << dictionary.bits) - 1));
    bitBuffer >>= dictionary.bits;
    bitCount -= dictionary.bits;

    if (code == dictionary.clear) {
      dictionary.reset();
    } else if (code == dictionary.clear + 1) {
      for (; blockLeft > 0; --blockLeft)
        if (next() < 0) return GifError::endOfFile;
      return skipBlocks();
    } else if (!dictionary.expand(code, &sink)) {
      return GifError::badCode;
    }
  }
}
