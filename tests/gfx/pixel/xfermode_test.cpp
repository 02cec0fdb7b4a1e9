// Transfer modes against their rules on single pixels.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>

#include "gfx/halt.h"
#include "gfx/pixel/hsgalphamode.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/vector/hsmeta.h"

namespace {

constexpr size_t kRow = 40;

struct Row {
  explicit Row(Random& random) : count(size_t(random.Between(1, kRow))), hasAlpha(random.Chance(60)) {
    for (size_t i = 0; i < kRow; ++i) {
      const int a = random.Byte();
      // Premultiplied, as sources are.
      source[i] = Join32({a, random.Below(a + 1), random.Below(a + 1), random.Below(a + 1)});
      coverage[i] = random.Byte();
      device16[i] = uint16_t(random.engine());
      device8[i] = uint8_t(random.Below(200));
      source8[i] = random.Byte();
    }
  }
  const uint8_t* Alpha() const { return hasAlpha ? coverage.data() : nullptr; }
  std::optional<int> Coverage(size_t i) const { return hasAlpha ? std::optional<int>(coverage[i]) : std::nullopt; }

  size_t count;
  bool hasAlpha;
  std::array<uint32_t, kRow> source;
  std::array<uint8_t, kRow> coverage, device8, source8;
  std::array<uint16_t, kRow> device16;
};

uint32_t Src16(uint32_t s, uint32_t d, std::optional<int> c) {
  if (!c || *c == 255) return Pack(s);
  if (*c == 0) return d;
  const Channels p = Split32(s), q = Split16(d);
  return Join16(Blend(p.r / 4, q.r, *c + 1), Blend(p.g / 8, q.g, *c + 1), Blend(p.b / 8, q.b, *c + 1));
}

uint32_t SrcOver16(uint32_t s, uint32_t d, std::optional<int> c) {
  const Channels p = Split32(s), q = Split16(d);
  if (p.a == 0 || c == 0) return d;
  if (p.a == 255 && c.value_or(255) == 255) return Pack(s);
  if (!c) {
    const int u = 256 - p.a;
    return Join16(p.r / 4 + q.r * u / 256, p.g / 8 + q.g * u / 256, p.b / 8 + q.b * u / 256);
  }
  const int k = *c + 1, u = 256 - p.a * k / 256;
  return Join16(p.r * k / 1024 + q.r * u / 256, p.g * k / 2048 + q.g * u / 256, p.b * k / 2048 + q.b * u / 256);
}

uint32_t SrcOver8(uint32_t s, uint32_t d, std::optional<int> c, const Palette& palette) {
  Channels p = Split32(s);
  const Channels e = Split32(palette.colors[d]);
  if (p.a == 0 || c == 0) return d;
  if (p.a == 255 && c.value_or(255) == 255) return palette.Nearest(s);
  if (c) p = Split32(Scale32(s, *c + 1));
  const int u = 256 - p.a;
  return palette.Nearest((p.r + e.r * u / 256) % 256, (p.g + e.g * u / 256) % 256, (p.b + e.b * u / 256) % 256);
}

TEST(XferMode, SrcOn16BitsAndSrcOverOnBoth) {
  Random random(1);
  const Palette palette(random, 200);
  hsGSrcMode src;
  hsGSrcOverMode over;
  for (int iteration = 0; iteration < 500; ++iteration) {
    Row row(random), expected(row);
    const bool isOver = random.Chance(50);
    for (size_t i = 0; i < row.count; ++i) {
      const std::optional<int> c = row.Coverage(i);
      expected.device16[i] = uint16_t((isOver ? SrcOver16 : Src16)(row.source[i], row.device16[i], c));
      expected.device8[i] = uint8_t(SrcOver8(row.source[i], row.device8[i], c, palette));
    }
    (isOver ? static_cast<hsGXferMode&>(over) : src)
        .Xfer16(int(row.count), row.source.data(), row.device16.data(), row.Alpha());
    over.Xfer8(int(row.count), row.source.data(), row.device8.data(), palette.table, row.Alpha());
    ASSERT_EQ(row.device16, expected.device16) << isOver;
    ASSERT_EQ(row.device8, expected.device8);
  }
  EXPECT_EQ(AssertOf([&] { src.Xfer16(0, nullptr, nullptr, nullptr); }), "bad count");
}

TEST(XferMode, SrcCarriesErrorAlongAPaletteRow) {
  Random random(2);
  Palette palette(random, 200);
  hsGSrcMode mode;
  for (int iteration = 0; iteration < 500; ++iteration) {
    Row row(random), expected(row);
    Channels error{};
    for (size_t i = 0; i < row.count; ++i) {
      const int c = row.Coverage(i).value_or(255);
      if (c == 0) continue;
      Channels v = Split32(row.source[i]);
      if (c != 255) {
        const Channels e = Split32(palette.colors[row.device8[i]]);
        v = {0, Blend(v.r, e.r, c + 1), Blend(v.g, e.g, c + 1), Blend(v.b, e.b, c + 1)};
      }
      v = {0, v.r + error.r, v.g + error.g, v.b + error.b};
      const auto clamp = [](int x) { return x < 0 ? 0 : x > 255 ? 255 : x; };
      const uint32_t index = palette.Nearest(clamp(v.r), clamp(v.g), clamp(v.b));
      const Channels e = Split32(palette.colors[index]);
      error = {0, v.r - e.r, v.g - e.g, v.b - e.b};
      expected.device8[i] = uint8_t(index);
    }
    mode.Xfer8(int(row.count), row.source.data(), row.device8.data(), palette.table, row.Alpha());
    ASSERT_EQ(row.device8, expected.device8);
  }
}

TEST(XferMode, EightModesOnCoverage) {
  Random random(4);
  const std::function<int(int, int)> rules[] = {
      [](int, int) { return 0; },
      [](int s, int) { return s; },
      [](int s, int d) { return s + d * (256 - s) / 256; },
      [](int s, int d) { return d + s * (256 - d) / 256; },
      [](int s, int d) { return s * (d + 1) / 256; },
      [](int s, int d) { return d * (s + 1) / 256; },
      [](int s, int d) { return s * (256 - d) / 256; },
      [](int s, int d) { return d * (256 - s) / 256; },
  };
  for (uint32_t index = 0; index < 8; ++index) {
    hsGXferMode* mode = hsGAlphaCompositeMode::Create(index);
    for (int iteration = 0; iteration < 100; ++iteration) {
      Row row(random), expected(row);
      for (size_t i = 0; i < row.count; ++i) {
        const int s = row.source8[i], d = row.device8[i], c = row.Coverage(i).value_or(255);
        int result = Blend(rules[index](s, d), d, c + 1);
        if (index == 0 && row.hasAlpha) result = d * (256 - c) / 256;
        if (index == 2 && c == 0) result = d;
        expected.device8[i] = uint8_t(result);
      }
      mode->XferA(int(row.count), row.source8.data(), row.device8.data(), row.Alpha());
      ASSERT_EQ(row.device8, expected.device8) << index;
    }
    mode->UnRef();
  }
  EXPECT_EQ(hsGAlphaCompositeMode::Create(8u), nullptr);
  EXPECT_EQ(AssertOf([] { hsGAlphaCompositeMode mode(0); }), "missing proc");
}

TEST(XferMode, AlphaModesKnowOnlyCoverageAndTheirWords) {
  hsMeta meta;
  EXPECT_EQ(hsGXferMode::Create("alphaMode", meta), nullptr);
  meta.AddString("mode", "dstIn");
  EXPECT_EQ(hsGXferMode::Create("betaMode", meta), nullptr);
  hsGXferMode* mode = hsGXferMode::Create("alphaMode", meta);
  ASSERT_NE(mode, nullptr);
  hsMeta described;
  mode->Describe(&described);
  EXPECT_EQ(described, meta);

  uint16_t pixel = 1234;
  const hsGColor32 color = 0x80808080;
  EXPECT_EQ(ReportOf([&] { mode->Xfer16(1, &color, &pixel, nullptr); }), "bad device for alpha mode: 0");
  EXPECT_EQ(pixel, 1234);
  mode->UnRef();

  hsMeta shortest;
  shortest.AddString("mode", "src");
  EXPECT_NE(hsAdopt(hsGAlphaCompositeMode::Create(shortest)).get(), nullptr);

  hsMeta unknown;
  unknown.AddString("mode", "srcin");
  EXPECT_EQ(hsGAlphaCompositeMode::Create(unknown), nullptr);
}

}  // namespace
