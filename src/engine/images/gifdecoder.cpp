#include "engine/images/gifdecoder.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "gfx/foundation/hsbytes.h"

namespace {

constexpr int kMaxBits = 12;
constexpr int kMaxCodes = 1 << kMaxBits;
struct Pass {
  uint32_t start, step;
};
constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
constexpr Pass kPlain[] = {{0, 1}};

int tableSize(uint8_t packed) { return 2 << (packed & 7); }

// Passes on finished rows in the order of the passes.
class RowSink {
 public:
  RowSink(uint32_t h, bool interlaced, const GifDecoder::Row& r)
      : height(h),
        emit(r),
        pass(interlaced ? kInterlaced : kPlain),
        passEnd(interlaced ? std::end(kInterlaced) : std::end(kPlain)),
        y(pass->start) {}

  void put(const uint8_t* row, uint32_t width) {
    if (pass == passEnd) return;  // more than the image holds
    emit(y, row, width);
    y += pass->step;
    while (y >= height && ++pass != passEnd) y = pass->start;
  }

 private:
  uint32_t height;
  const GifDecoder::Row& emit;
  const Pass *pass, *passEnd;
  uint32_t y;
};

// Bits of an image's data, the low ones first, and the bytes of the block that follow them.
struct GifBits {
  uint64_t buffer = 0;
  int count = 0;
  const uint8_t* at = nullptr;
  const uint8_t* end = nullptr;

  // Bytes that don't fit as a whole come again at the same place.
  void refill() {
    buffer |= hsLittle64(at) << count;
    at += (63 - count) / 8;
    count |= 56;
  }
  bool canRefill() const { return end - at >= 8; }
  int peek(int bits) const { return int(buffer & ((1u << bits) - 1)); }
  void drop(int bits) {
    buffer >>= bits;
    count -= bits;
  }
};

// Expands codes, all into one buffer. What a code means has been written there before, and since the next code's
// indices follow it, so has what it means with one index more: an entry of the dictionary is no more than a place and a
// length. Indices stay while entries may point at them and until their row is full.
class Expander {
 public:
  Expander(int minimum, uint32_t w, RowSink& s) : clear(1 << minimum), width(w), minimumBits(minimum), sink(s) {
    written.resize(kLeastSpace);
    for (int i = 0; i < clear; ++i) {
      written[size_t(i)] = uint8_t(i);
      entries[size_t(i)] = {uint32_t(i), 1};
    }
    end = row = size_t(clear);
    reset();
  }

  void reset() {
    count = clear + 2;
    bits = minimumBits + 1;
    isFirst = true;
    kept = size_t(clear);
    dropRows();
  }

  // Takes codes for indices, of which there is at least one, up to any other code and as long as bits can be had; each
  // code's indices are written, and the next code is defined. False for a code that can't be.
  bool expand(GifBits* input) {
    GifBits in = *input;
    Step step = Step::done;
    do {
      while (step == Step::done && in.canRefill() && !isFirst && count + kBatch < 1 << bits) step = takeSome(&in);
      if (step == Step::done) step = takeOne(&in);
    } while (step == Step::done);
    *input = in;
    return step != Step::wrong;
  }

  const int clear;  // the code that empties it; the next one ends the image
  int bits;         // of the codes now

 private:
  static constexpr size_t kAtOnce = 16;  // indices that are written at one stroke, wanted or not
  static constexpr size_t kLeastSpace = 1 << 16;
  static constexpr int kBatch = 4;  // codes whose bits come with one refill

  struct Entry {
    uint32_t at, length;
  };
  enum class Step { done, other, wrong };  // other: a code of another kind is next, or there are too few bits

  // kBatch codes, between a clear and a change of anything. Most of all codes come here.
  Step takeSome(GifBits* input) {
    GifBits in = *input;
    in.refill();
    if (written.size() - end < kBatch * size_t{kMaxCodes} + kAtOnce) makeSpace(kBatch * size_t{kMaxCodes});
    Step step = Step::done;
    for (int i = 0; i < kBatch; ++i) {
      const int code = in.peek(bits);
      if ((code & ~1) == clear) {
        step = Step::other;
        break;
      }
      if (code > count) {
        step = Step::wrong;
        break;
      }
      in.drop(bits);
      entries[size_t(count++)] = {last.at, last.length + 1};
      write(entries[size_t(code)]);
    }
    if (end - row >= width) passRowsOn();
    *input = in;
    return step;
  }

  Step takeOne(GifBits* in) {
    if (in->count < bits) {
      if (!in->canRefill()) return Step::other;
      in->refill();
    }
    const int code = in->peek(bits);
    if ((code & ~1) == clear) return Step::other;
    in->drop(bits);
    if (isFirst) {  // after a clear it means itself
      if (code >= clear) return Step::wrong;
    } else {
      if (code > count || (code == count && count >= kMaxCodes)) return Step::wrong;
      if (count < kMaxCodes) define();
    }
    isFirst = false;
    const Entry entry = entries[size_t(code)];
    if (written.size() - end < entry.length + kAtOnce) makeSpace(entry.length);
    write(entry);
    if (end - row >= width) passRowsOn();
    return Step::done;
  }

  void write(Entry entry) {
    copy(written.data() + entry.at, written.data() + end, entry.length);
    last = {uint32_t(end), entry.length};
    end += entry.length;
  }

  // The next code is the one before, and the index that follows it. A dictionary that is full stays as it is.
  void define() {
    entries[size_t(count)] = {last.at, last.length + 1};
    if (++count == kMaxCodes) kept = end + 1;
    if (count == 1 << bits && bits < kMaxBits) ++bits;
  }

  // A code that means the one before and its first index again reads what it has just written.
  static void copy(const uint8_t* from, uint8_t* to, size_t length) {
    if (from + length > to) {
      for (size_t i = 0; i < length; ++i) to[i] = from[i];
      return;
    }
    for (size_t i = 0; i < length; i += kAtOnce) {
      std::array<uint8_t, kAtOnce> some;
      std::memcpy(some.data(), from + i, kAtOnce);
      std::memcpy(to + i, some.data(), kAtOnce);
    }
  }

  void passRowsOn() {
    for (; end - row >= width; row += width) sink.put(written.data() + row, width);
  }

  // What lies between the indices kept and the unfinished row, where no entry points at it; at least a row, so that
  // moving costs no more than writing did.
  void dropRows() {
    if (row <= kept + width) return;
    std::memmove(written.data() + kept, written.data() + row, end - row);
    end -= row - kept;
    row = kept;
  }

  // The buffer grows as far as 4,096 entries of 4,096 indices need it.
  void makeSpace(size_t length) {
    if (count == kMaxCodes) dropRows();
    if (written.size() - end < length + kAtOnce + kLeastSpace / 2) written.resize(2 * (end + length + kLeastSpace));
  }

  const uint32_t width;
  const int minimumBits;
  RowSink& sink;
  int count;
  bool isFirst;
  Entry last{};     // what was written for the code before
  size_t kept;      // once no more are defined, entries point at nothing from here on
  size_t row, end;  // where the unfinished row begins, and where what is written ends
  std::vector<uint8_t> written;
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

  RowSink sink(current.height, current.interlaced, row);
  Expander expander(minimumBits, current.width, sink);
  GifBits bits;
  int blockLeft = 0;
  for (;;) {
    while (bits.count < expander.bits) {
      if (blockLeft == 0) {
        blockLeft = next();
        if (blockLeft < 0) return GifError::endOfFile;
        if (blockLeft == 0) return GifError::none;  // the data ends without an end code
      }
      if (position == filled && !fill()) return GifError::endOfFile;
      for (; blockLeft > 0 && position < filled && bits.count <= 48; --blockLeft, bits.count += 8)
        bits.buffer |= uint64_t{buffer[position++]} << bits.count;
    }
    const int code = bits.peek(expander.bits);
    if (code == expander.clear) {
      bits.drop(expander.bits);
      expander.reset();
    } else if (code == expander.clear + 1) {
      for (; blockLeft > 0; --blockLeft)
        if (next() < 0) return GifError::endOfFile;
      return skipBlocks();
    } else {
      const uint8_t* const from = buffer.data() + position;
      bits.at = from;
      bits.end = from + std::min(size_t(blockLeft), filled - position);
      if (!expander.expand(&bits)) return GifError::badCode;
      position += size_t(bits.at - from);
      blockLeft -= int(bits.at - from);
    }
  }
}
