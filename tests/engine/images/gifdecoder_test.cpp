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
  void image(int width, int height, bool interlaced, int minimumBits, const std::vector<uint8_t>& indices,
             bool emptied = true) {
    bytes.push_back(0x2C);
    for (int word : {7, 9, width, height}) little16(word);
    add({uint8_t(interlaced ? 0x40 : 0), uint8_t(minimumBits)});
    const int clear = 1 << minimumBits;
    std::map<std::pair<int, uint8_t>, int> dictionary;
    std::vector<std::pair<int, int>> codes = {{clear, minimumBits + 1}};
    int next = clear + 2, bits = minimumBits + 1, current = indices[0];
    for (size_t i = 1; i < indices.size(); ++i) {
      if (const auto found = dictionary.find({current, indices[i]}); found != dictionary.end()) {
        current = found->second;
        continue;
      }
      codes.push_back({current, bits});
      if (next < 4096) {
        dictionary[{current, indices[i]}] = next;
        if (next++ == 1 << bits && bits < 12) ++bits;
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
  uint32_t width = 0, height = 0;
  bool hasColors = false;
  std::vector<std::vector<uint8_t>> rows;  // by number
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
  result.error = decoder.decode(
      [&](uint32_t width, uint32_t height, const std::array<uint32_t, 256>* colors) {
        result.width = width;
        result.height = height;
        result.hasColors = colors != nullptr;
        return true;
      },
      [&](uint32_t y, const uint8_t* indices, uint32_t count) {
        if (result.rows.size() <= y) result.rows.resize(y + 1);
        result.rows[y].assign(indices, indices + count);
      });
  return result;
}

TEST(GifDecoder, EveryCodeSizePlainAndInterlaced) {
  std::mt19937 random(1);
  for (int bits = 2; bits <= 8; ++bits) {
    for (bool interlaced : {false, true}) {
      const int width = 13, height = 21;
      std::vector<std::vector<uint8_t>> picture(height, std::vector<uint8_t>(width));
      for (auto& row : picture)
        for (auto& index : row) index = uint8_t(random() % (1u << bits));
      std::vector<uint8_t> indices;
      const std::vector<std::pair<int, int>> passes{{0, 8}, {4, 8}, {2, 4}, {1, 2}}, whole{{0, 1}};
      for (auto [start, step] : interlaced ? passes : whole)
        for (size_t y = size_t(start); y < height; y += size_t(step))
          indices.insert(indices.end(), picture[y].begin(), picture[y].end());
      GifWriter gif(width, height, bits);
      gif.image(width, height, interlaced, bits, indices);
      const Decoded result = decode(gif.bytes);
      EXPECT_EQ(result.error, GifError::none);
      EXPECT_EQ(result.rows, picture) << bits << interlaced;
    }
  }
}

TEST(GifDecoder, AGraphicControlIsForTheNextImageOnly) {
  GifWriter gif(1, 1, 2);
  gif.add({0x21, 0xF9, 4, 1, 0, 0, 3, 0});
  for (int i = 0; i < 2; ++i) gif.image(1, 1, false, 2, {0});
  size_t at = 0;
  GifDecoder decoder([&](uint8_t* buffer, size_t size) {
    size = std::min(size, gif.bytes.size() - at);
    std::copy_n(gif.bytes.begin() + long(at), size, buffer);
    at += size;
    return size;
  });
  std::vector<int> transparent;
  decoder.decode([](uint32_t, uint32_t, const std::array<uint32_t, 256>*) { return true; },
                 [&](uint32_t, const uint8_t*, uint32_t) { transparent.push_back(decoder.image().transparent); });
  EXPECT_EQ(transparent, (std::vector<int>{3, -1}));
}

TEST(GifDecoder, CodesThatDefineThemselvesAndWidthsThatGrow) {
  // By hand, minimum 2 bits: clear 4, end 5. Codes 1, 6 (being defined: 1 1), 7 (being defined: 1 1 1): three bits
  // until code 7 is defined, four from then on.
  GifWriter gif(6, 1, 2);
  gif.add({0x2C, 0, 0, 0, 0, 6, 0, 1, 0, 0, 2});
  // clear=100 1=001 6=110 7=111, then end=0101 in four bits, lowest bit first: 100 | 001<<3 | 110<<6 | 111<<9 |
  // 0101<<12
  const uint32_t packed = 4 | 1 << 3 | 6 << 6 | 7 << 9 | 5 << 12;
  gif.add({2, uint8_t(packed), uint8_t(packed >> 8), 0, 0x3B});
  const Decoded result = decode(gif.bytes);
  EXPECT_EQ(result.error, GifError::none);
  EXPECT_EQ(result.rows, (std::vector<std::vector<uint8_t>>{{1, 1, 1, 1, 1, 1}}));
}

// Strings of every length, across rows and across the dictionary's end.
TEST(GifDecoder, WholeDictionaries) {
  std::mt19937 random(2);
  for (int bits : {2, 5, 8}) {
    for (bool emptied : {false, true}) {
      for (int width : {1, 7, 300}) {
        const int height = 60000 / width;
        std::vector<uint8_t> indices;
        while (int(indices.size()) < width * height) {  // runs, some long, between noise
          const size_t length = random() % 8 ? 1 + random() % 3 : random() % 2000;
          indices.insert(indices.end(), length, uint8_t(random() % (1u << bits)));
        }
        indices.resize(size_t(width * height));
        GifWriter gif(width, height, bits);
        gif.image(width, height, false, bits, indices, emptied);
        const Decoded result = decode(gif.bytes);
        ASSERT_EQ(result.error, GifError::none);
        ASSERT_EQ(result.rows.size(), size_t(height));
        std::vector<uint8_t> all;
        for (const auto& row : result.rows) all.insert(all.end(), row.begin(), row.end());
        ASSERT_TRUE(all == indices) << bits << emptied << width;
      }
    }
  }
}

TEST(GifDecoder, FaultsHaveTheirNumbers) {
  GifWriter good(2, 1, 2);
  const size_t screenEnd = 13;
  EXPECT_EQ(decode({'G', 'I', 'G', '8', '9', 'a'}).error, GifError::badSignature);
  EXPECT_EQ(decode({good.bytes.begin(), good.bytes.begin() + 9}).error, GifError::truncatedDescriptor);
  EXPECT_EQ(decode({good.bytes.begin(), good.bytes.begin() + screenEnd + 4}).error, GifError::truncatedColorTable);
  EXPECT_EQ(decode(good.bytes).error, GifError::none);  // the file may end between blocks

  const auto with = [&](std::vector<uint8_t> more) {
    std::vector<uint8_t> bytes = good.bytes;
    for (uint8_t byte : more) bytes.push_back(byte);
    return decode(bytes).error;
  };
  EXPECT_EQ(with({0x21, 0xF9, 3}), GifError::badGraphicControl);
  EXPECT_EQ(with({0x21, 0xF9, 4, 0, 0}), GifError::endOfFile);
  EXPECT_EQ(with({0x77, 0x21, 0xFE, 2, 'h', 'i', 0, 0x3B, 0x21}), GifError::none);
  EXPECT_EQ(with({0x2C, 0, 0}), GifError::truncatedDescriptor);
  EXPECT_EQ(with({0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 9}), GifError::badCodeSize);
  EXPECT_EQ(with({0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 2, 1, 0x07}), GifError::badCode);  // 7 before anything is defined
  EXPECT_EQ(with({0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 2, 5, 0x04}), GifError::endOfFile);
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
