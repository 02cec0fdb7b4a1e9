#include "engine/gifdecoder.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kMaxBits = 12;
constexpr int kMaxCodes = 1 << kMaxBits;

struct Pass {
  uint32_t start, step;
};
constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
constexpr Pass kPlain[] = {{0, 1}};

uint32_t little16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }

int tableSize(uint8_t packed) { return 2 << (packed & 7); }

// Collects indices into rows and hands each on when it is full, in the order of the passes.
class RowSink {
 public:
  RowSink(uint32_t w, uint32_t h, bool interlaced, const GifDecoder::Row& r)
      : height(h),
        emit(r),
        indices(w),
        pass(interlaced ? kInterlaced : kPlain),
        passEnd(interlaced ? std::end(kInterlaced) : std::end(kPlain)),
        y(pass->start) {}

  void put(uint8_t index) {
    if (pass == passEnd) return;  // more than the image holds
    indices[filled++] = index;
    if (filled < indices.size()) return;
    filled = 0;
    emit(y, indices.data(), uint32_t(indices.size()));
    y += pass->step;
    while (y >= height && ++pass != passEnd) y = pass->start;
  }

 private:
  uint32_t height;
  const GifDecoder::Row& emit;
  std::vector<uint8_t> indices;
  size_t filled = 0;
  const Pass *pass, *passEnd;
  uint32_t y;
};

// The dictionary: each code is a shorter one and a last index.
class Dictionary {
 public:
  void reset(int minimumBits) {
    clear = 1 << minimumBits;
    count = clear + 2;
    bits = minimumBits + 1;
    previous = -1;
  }

  // Writes the indices of the code, first to last, into `out` and gives their number; 0 for a code that can't be.
  size_t expand(int code, std::array<uint8_t, kMaxCodes>* out) {
    if (previous < 0) {  // the first behind a clear stands for itself
      if (code >= clear) return 0;
      previous = code;
      first = uint8_t(code);
      (*out)[0] = first;
      return 1;
    }
    if (code > count || (code == count && count >= kMaxCodes)) return 0;
    size_t at = out->size();
    int link = code;
    if (code == count) {  // the code being defined: the one before it and its first index again
      (*out)[--at] = first;
      link = previous;
    }
    for (; link >= clear; link = prefix[size_t(link)]) {
      if (link < clear + 2 || at < 2) return 0;
      (*out)[--at] = suffix[size_t(link)];
    }
    first = uint8_t(link);
    (*out)[--at] = first;
    add();
    previous = code;
    const size_t length = out->size() - at;
    std::copy(out->begin() + long(at), out->end(), out->begin());
    return length;
  }

  int clear = 0;  // the code that empties it; the next one ends the image
  int bits = 0;   // of the codes now

 private:
  void add() {
    if (count == kMaxCodes) return;  // it is full and stays as it is
    prefix[size_t(count)] = int16_t(previous);
    suffix[size_t(count)] = first;
    if (++count == 1 << bits && bits < kMaxBits) ++bits;
  }

  int count = 0;
  int previous = -1;
  uint8_t first = 0;
  std::array<int16_t, kMaxCodes> prefix;
  std::array<uint8_t, kMaxCodes> suffix;
};

}  // namespace

int GifDecoder::next() {
  if (position == filled) {
    filled = source(buffer.data(), buffer.size());
    position = 0;
    if (filled == 0) return -1;
  }
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
  if (!begin(little16(screen), little16(screen + 2), globalCount ? &global : nullptr)) return GifError::outOfMemory;

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
             little16(descriptor),
             little16(descriptor + 2),
             little16(descriptor + 4),
             little16(descriptor + 6),
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
  Dictionary dictionary;
  dictionary.reset(minimumBits);
  std::array<uint8_t, kMaxCodes> indices;
  uint32_t bitBuffer = 0;
  int bitCount = 0, blockLeft = 0;
  for (;;) {
    while (bitCount < dictionary.bits) {
      if (blockLeft == 0) {
        blockLeft = next();
        if (blockLeft < 0) return GifError::endOfFile;
        if (blockLeft == 0) return GifError::none;  // the data ends without an end code
      }
      const int byte = next();
      if (byte < 0) return GifError::endOfFile;
      --blockLeft;
      bitBuffer |= uint32_t(byte) << bitCount;
      bitCount += 8;
    }
    const int code = int(bitBuffer & ((1u << dictionary.bits) - 1));
    bitBuffer >>= dictionary.bits;
    bitCount -= dictionary.bits;

    if (code == dictionary.clear) {
      dictionary.reset(minimumBits);
    } else if (code == dictionary.clear + 1) {
      for (; blockLeft > 0; --blockLeft)
        if (next() < 0) return GifError::endOfFile;
      return skipBlocks();
    } else {
      const size_t length = dictionary.expand(code, &indices);
      if (length == 0) return GifError::badCode;
      for (size_t i = 0; i < length; ++i) sink.put(indices[i]);
    }
  }
}
