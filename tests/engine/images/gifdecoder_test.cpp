#include "engine/images/gifdecoder.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

class GifWriter {
 public:
  GifWriter(int width, int height, int colorBits) {
    text("GIF89a");
    little16(width);
    little16(height);
    bytes.push_back(colorBits ? uint8_t(0x80 | (colorBits - 1)) : 0);
    add({0, 0});
    for (int i = 0; colorBits && i < 1 << colorBits; ++i) add({uint8_t(i), uint8_t(i * 2), uint8_t(i * 3)});
  }

  // With a dictionary, as encoders do it; a full one is emptied, or stays full to the end.
  // Returns whether the dictionary was ever full.
  bool image(int width, int height, bool interlaced, int minimumBits, const std::vector<uint8_t>& indices,
             bool emptied = true) {
    bytes.push_back(0x2C);
    for (int word : {7, 9, width, height}) little16(word);
    add({uint8_t(interlaced ? 0x40 : 0), uint8_t(minimumBits)});
    const int clear = 1 << minimumBits;
    std::map<std::pair<int, uint8_t>, int> dictionary;
    std::vector<std::pair<int, int>> codes = {{clear, minimumBits + 1}};
    int next = clear + 2, bits = minimumBits + 1, current = indices[0];
    bool full = false;
    for (size_t i = 1; i < indices.size(); ++i) {
      if (const auto found = dictionary.find({current, indices[i]}); found != dictionary.end()) {
        current = found->second;
        continue;
      }
      codes.push_back({current, bits});
      if (next < 4096) {
        dictionary[{current, indices[i]}] = next;
        if (next++ == 1 << bits && bits < 12) ++bits;
        full |= next == 4096;
      } else if (emptied) {
        codes.push_back({clear, bits});
        dictionary.clear();
        next = clear + 2;
        bits = minimumBits + 1;
      }
      current = indices[i];
    }
    codes.push_back({current, bits});
    if (next == 1 << bits && bits < 12) ++bits;  // the decoder defines one more for that code
    codes.push_back({clear + 1, bits});
    put(codes);
    return full;
  }

  // Codes, each with its width, in blocks of 255 bytes.
  void put(const std::vector<std::pair<int, int>>& codes) {
    std::vector<uint8_t> data;
    uint32_t buffer = 0;
    int count = 0;
    for (auto [code, bits] : codes) {
      buffer |= uint32_t(code) << count;
      for (count += bits; count >= 8; count -= 8, buffer >>= 8) data.push_back(uint8_t(buffer));
    }
    if (count) data.push_back(uint8_t(buffer));
    for (size_t at = 0; at < data.size(); at += 255) {
      const size_t size = std::min<size_t>(255, data.size() - at);
      bytes.push_back(uint8_t(size));
      for (size_t i = 0; i < size; ++i) bytes.push_back(data[at + i]);
    }
    bytes.push_back(0);
  }

  void add(std::initializer_list<uint8_t> more) {
    for (uint8_t byte : more) bytes.push_back(byte);
  }
  void text(const char* t) {
    for (; *t; ++t) bytes.push_back(uint8_t(*t));
  }
  void little16(int v) { add({uint8_t(v), uint8_t(v >> 8)}); }

  std::vector<uint8_t> bytes;
};

struct Decoded {
  GifError error;
  std::vector<std::vector<uint8_t>> rows;  // by number
  std::vector<int> transparent;            // as it was at each row
};

Decoded decode(const std::vector<uint8_t>& bytes) {
  Decoded result;
  size_t at = 0;
  GifDecoder decoder([&](uint8_t* buffer, size_t size) {
    size = std::min(size, bytes.size() - at);
    std::copy_n(bytes.begin() + long(at), size, buffer);
    at += size;
    return size;
  });
  result.error = decoder.decode([](uint32_t, uint32_t, const std::array<uint32_t, 256>*) { return true; },
                                [&](uint32_t y, const uint8_t* indices, uint32_t count) {
                                  if (result.rows.size() <= y) result.rows.resize(y + 1);
                                  result.rows[y].assign(indices, indices + count);
                                  result.transparent.push_back(decoder.image().transparent);
                                });
  return result;
}

// Writes a picture, row by row from the top, and reads it again. Returns whether the dictionary was ever full.
bool expectBack(const std::vector<uint8_t>& indices, int width, int bits, bool interlaced, bool emptied = true) {
  SCOPED_TRACE(testing::Message() << bits << " bits, " << width << " wide" << (interlaced ? ", interlaced" : ""));
  std::vector<std::vector<uint8_t>> rows;
  for (auto at = indices.begin(); at != indices.end(); at += width) rows.emplace_back(at, at + width);
  std::vector<uint8_t> inFile;
  const std::vector<std::pair<size_t, size_t>> passes{{0, 8}, {4, 8}, {2, 4}, {1, 2}}, whole{{0, 1}};
  for (auto [start, step] : interlaced ? passes : whole)
    for (size_t y = start; y < rows.size(); y += step) inFile.insert(inFile.end(), rows[y].begin(), rows[y].end());
  GifWriter gif(width, int(rows.size()), bits);
  const bool full = gif.image(width, int(rows.size()), interlaced, bits, inFile, emptied);
  const Decoded result = decode(gif.bytes);
  EXPECT_EQ(result.error, GifError::none);
  EXPECT_TRUE(result.rows == rows);
  return full;
}

TEST(GifDecoder, EveryCodeSizePlainAndInterlaced) {
  std::mt19937 random(1);
  for (int bits = 2; bits <= 8; ++bits) {
    std::vector<uint8_t> noise(13 * 21);
    for (uint8_t& index : noise) index = uint8_t(random() % (1u << bits));
    for (bool interlaced : {false, true}) expectBack(noise, 13, bits, interlaced);
  }
}

// Strings of every length, across rows and across the dictionary's end.
TEST(GifDecoder, WholeDictionaries) {
  std::mt19937 random(2);
  for (int bits : {2, 5, 8}) {
    std::vector<uint8_t> indices;
    while (indices.size() < 63000) {  // runs, some long, between noise
      const size_t length = random() % 400 ? 1 + random() % 3 : random() % 2000;
      indices.insert(indices.end(), length, uint8_t(random() % (1u << bits)));
    }
    indices.resize(indices.size() / 2100 * 2100);
    for (bool emptied : {false, true})
      for (int width : {1, 7, 300}) EXPECT_TRUE(expectBack(indices, width, bits, false, emptied));
  }
}

TEST(GifDecoder, AGraphicControlIsForTheNextImageOnly) {
  GifWriter gif(1, 1, 2);
  gif.add({0x21, 0xF9, 4, 1, 0, 0, 3, 0});
  for (int i = 0; i < 2; ++i) gif.image(1, 1, false, 2, {0});
  EXPECT_EQ(decode(gif.bytes).transparent, (std::vector<int>{3, -1}));
}

TEST(GifDecoder, CodesThatDefineThemselvesAndWidthsThatGrow) {
  // By hand, minimum 2 bits: clear 4, end 5. Codes 1, 6 (being defined: 1 1), 7 (being defined: 1 1 1): three bits
  // until code 7 is defined, four from then on.
  GifWriter gif(6, 1, 2);
  gif.add({0x2C, 0, 0, 0, 0, 6, 0, 1, 0, 0, 2});
  gif.put({{4, 3}, {1, 3}, {6, 3}, {7, 3}, {5, 4}});
  const Decoded result = decode(gif.bytes);
  EXPECT_EQ(result.error, GifError::none);
  EXPECT_EQ(result.rows, (std::vector<std::vector<uint8_t>>{{1, 1, 1, 1, 1, 1}}));
}

TEST(GifDecoder, FaultsHaveTheirNumbers) {
  const std::vector<uint8_t> screen = GifWriter(2, 1, 2).bytes;
  EXPECT_EQ(decode({'G', 'I', 'G', '8', '9', 'a'}).error, GifError::badSignature);
  EXPECT_EQ(decode({screen.begin(), screen.begin() + 9}).error, GifError::truncatedDescriptor);
  EXPECT_EQ(decode({screen.begin(), screen.begin() + 13 + 4}).error, GifError::truncatedColorTable);
  const std::pair<std::vector<uint8_t>, GifError> afterTheScreen[] = {
      {{}, GifError::none},  // the file may end between blocks
      {{0x21, 0xF9, 3}, GifError::badGraphicControl},
      {{0x21, 0xF9, 4, 0, 0}, GifError::endOfFile},
      {{0x77, 0x21, 0xFE, 2, 'h', 'i', 0, 0x3B, 0x21}, GifError::none},
      {{0x2C, 0, 0}, GifError::truncatedDescriptor},
      {{0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 9}, GifError::badCodeSize},
      {{0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 2, 1, 0x07}, GifError::badCode},  // 7 before anything is defined
      {{0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 2, 5, 0x04}, GifError::endOfFile},
  };
  for (const auto& [more, error] : afterTheScreen) {
    std::vector<uint8_t> bytes = screen;
    bytes.insert(bytes.end(), more.begin(), more.end());
    EXPECT_EQ(decode(bytes).error, error) << testing::PrintToString(more);
  }
}

TEST(GifDecoder, APrefixGivesTheRowsThatItHoldsAndNoOthers) {
  GifWriter gif(9, 9, 3);
  const size_t beforeImage = gif.bytes.size();
  std::vector<uint8_t> indices(81);
  for (size_t i = 0; i < indices.size(); ++i) indices[i] = uint8_t(i % 7);
  gif.image(9, 9, true, 3, indices);
  const Decoded whole = decode(gif.bytes);
  ASSERT_EQ(whole.rows.size(), 9u);
  size_t most = 0;
  for (size_t size = 0; size <= gif.bytes.size(); ++size) {
    const Decoded part = decode({gif.bytes.begin(), gif.bytes.begin() + long(size)});
    // Between blocks a file may end.
    EXPECT_EQ(part.error == GifError::none, size == beforeImage || size == gif.bytes.size()) << size;
    size_t count = 0;
    for (size_t y = 0; y < part.rows.size(); ++y) {
      if (part.rows[y].empty()) continue;
      EXPECT_EQ(part.rows[y], whole.rows[y]) << size;
      ++count;
    }
    EXPECT_GE(count, most) << size;
    most = count;
  }
  EXPECT_EQ(most, 9u);
}

}  // namespace
