// Bitmaps under matrices: mapped pixel by pixel through the inverse matrix, with tile rules and the filter in their
// plainest form.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmapblitter.h"
#include "gfx/pixel/hsgbitmapshader.h"
#include "gfx/pixel/hsgblitter16.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/pixel/hsgshaderblitter.h"
#include "gfx/pixel/hsgspriteblitter.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/pathtext.h"

namespace {

using B = hsGBitmap;
using Shader = hsGBitmapShader;

hsMatrix RandomMatrix(Random& random, bool perspective) {
  hsMatrix matrix;
  matrix.SetScale(random.Between(20000, 300000), random.Between(20000, 300000), 0, 0);
  if (random.Chance(60)) matrix.PreRotate(random.Between(0, 360) << 16, 0, 0);
  if (random.Chance(30)) matrix.fMap[0][0] = -matrix.fMap[0][0];
  matrix.PostTranslate(random.Between(-1000000, 1000000), random.Between(-1000000, 1000000));
  if (perspective) {
    matrix.fMap[2][0] = random.Between(-4000000, 4000000);
    matrix.fMap[2][1] = random.Between(1, 4000000);
  }
  return matrix;
}

// v by the tile rule on n pixels; -1 for nowhere.
int Tiled(int v, int n, Shader::TileMode mode) {
  switch (mode) {
    case Shader::kTile_Clamp: return std::min(std::max(v, 0), n - 1);
    case Shader::kTile_Repeat:
      while (v < 0) v += n;
      while (v >= n) v -= n;
      return v;
    case Shader::kTile_Mirror:
      while (v < 0) v += 2 * n;
      while (v >= 2 * n) v -= 2 * n;
      return v < n ? v : 2 * n - 1 - v;
    case Shader::kTile_None: return v < 0 || v >= n ? -1 : v;
  }
  return -1;
}

// A source and what its pixels mean.
struct Source {
  Source(Random& random, uint8_t config)
      : palette(random, 200), surface(config, random.Between(1, 7), random.Between(1, 7), random, &palette) {
    if (random.Chance(40)) surface.bitmap.SetFlags(B::kHasTransparent);
    surface.bitmap.fTransparentIndex = uint8_t(surface.Get(0, 0));
  }
  uint32_t Color(int x, int y) const {
    const uint32_t p = surface.Get(x, y);
    switch (surface.bitmap.fConfig) {
      case B::kConfig_Index8: return palette.colors[p];
      case B::kConfig_RGB32: return p | 0xFF000000;
      default: return p;
    }
  }
  bool HasKey() const {
    return surface.bitmap.fConfig == B::kConfig_Index8 && (surface.bitmap.fFlags & B::kHasTransparent);
  }
  bool IsKey(int x, int y) const { return HasKey() && surface.Get(x, y) == surface.bitmap.fTransparentIndex; }

  // The colour at a source position; false where there is none.
  bool At(hsPoint p, bool filter, Shader::TileMode mode, uint32_t* color) const {
    if (!filter) p = {p.fX + kFixedHalf, p.fY + kFixedHalf};
    const int w = surface.Width(), h = surface.Height();
    const int ix = Tiled(p.fX >> 16, w, mode), iy = Tiled(p.fY >> 16, h, mode);
    if (ix < 0 || iy < 0 || IsKey(ix, iy)) return false;
    *color = Color(ix, iy);
    if (!filter) return true;
    const int nx = std::min(ix + 1, w - 1), ny = std::min(iy + 1, h - 1);
    const int fx = (p.fX & 0xFFFF) >> 14, fy = (p.fY & 0xFFFF) >> 14;
    const Channels c00 = Split32(Color(ix, iy)), c10 = Split32(Color(nx, iy));
    const Channels c01 = Split32(Color(ix, ny)), c11 = Split32(Color(nx, ny));
    const auto mix = [&](int a, int b, int c, int d) {
      return ((4 - fx) * (4 - fy) * a + fx * (4 - fy) * b + (4 - fx) * fy * c + fx * fy * d) / 16;
    };
    *color = Join32({mix(c00.a, c10.a, c01.a, c11.a), mix(c00.r, c10.r, c01.r, c11.r), mix(c00.g, c10.g, c01.g, c11.g),
                     mix(c00.b, c10.b, c01.b, c11.b)});
    return true;
  }

  Palette palette;
  Surface surface;
};

hsPoint MapBack(const hsMatrix& inverse, int x, int y) {
  hsPoint p{x << 16, y << 16};
  inverse.MapPoints(1, &p, &p);
  return p;
}

TEST(BitmapShader, EveryWorkerFollowsItsRule) {
  Random random(1);
  for (int iteration = 0; iteration < 2000; ++iteration) {
    const uint8_t configs[] = {B::kConfig_RGB32, B::kConfig_ARGB32, B::kConfig_Index8};
    const Source source(random, configs[random.Below(3)]);
    const auto tile = Shader::TileMode(random.Below(4));
    const bool perspective = random.Chance(30), filter = random.Chance(50);
    const hsMatrix matrix = RandomMatrix(random, perspective);
    hsMatrix local, total, inverse;
    if (random.Chance(40)) local = RandomMatrix(random, false);
    total.SetConcat(matrix, local);
    if (!total.Invert(&inverse)) continue;
    const int alpha = random.Byte();
    hsGAttribute attr(filter ? hsGAttribute::kFilterBitmaps : 0u);
    attr.SetColor(uint16_t(alpha << 8), 1, 2, 3);
    const auto shader = hsAdopt(Shader::Create(source.surface.bitmap, attr, matrix, tile));
    shader->SetLocalMatrix(&local);
    shader->SetContext(source.surface.bitmap, attr, matrix);
    const uint8_t config = source.surface.bitmap.fConfig;
    EXPECT_EQ(shader->IsOpaque(), config != B::kConfig_ARGB32 && alpha == 255 && !source.HasKey());

    constexpr int kCount = 20;
    hsGColor32 row[kCount];
    const int x = random.Between(-20, 20), y = random.Between(-20, 20);
    shader->ShadeRow(y, x, kCount, row);
    const bool keepsAlpha = config != B::kConfig_Index8 || (tile == Shader::kTile_Clamp && !filter && !perspective);
    for (int i = 0; i < kCount; ++i) {
      uint32_t expected = 0;
      if (source.At(MapBack(inverse, x + i, y), filter, tile, &expected)) {
        expected = Scale32(expected, alpha + 1);
        if (!keepsAlpha) expected = (expected & 0xFFFFFF) | uint32_t(alpha) << 24;
      }
      ASSERT_EQ(row[i], expected) << iteration << " at " << i;
    }
  }
}

TEST(BitmapShader, LeavesRowsAloneWhenItCannotRead) {
  Random random(2);
  Source source(random, B::kConfig_RGB32), index(random, B::kConfig_Index8), shallow(random, B::kConfig_RGB16);
  hsGAttribute attr;
  const auto shader = hsAdopt(Shader::Create(source.surface.bitmap, attr, hsMatrix(), Shader::kTile_Repeat));
  hsGColor32 row[3] = {1, 2, 3};
  shader->ShadeRow(0, 0, 3, row);  // no context yet
  EXPECT_EQ(row[1], 2u);
  hsMatrix flat;
  flat.fMap[0][0] = flat.fMap[0][1] = flat.fMap[1][0] = flat.fMap[1][1] = 0x8000;
  EXPECT_EQ(ReportOf([&] { shader->SetContext(source.surface.bitmap, attr, flat); }), "cannot invert matrix: 0");
  shader->ShadeRow(0, 0, 3, row);
  EXPECT_EQ(row[1], 2u);
  shader->SetBitmap(&index.surface.bitmap);  // another depth
  shader->SetContext(source.surface.bitmap, attr, hsMatrix());
  shader->ShadeRow(0, 0, 3, row);
  EXPECT_EQ(row[1], 2u);
  EXPECT_EQ(AssertOf([&] { shader->SetBitmap(nullptr); }), "bm is nil");
  Source alpha(random, B::kConfig_ARGB32);
  shader->SetBitmap(&alpha.surface.bitmap);
  EXPECT_EQ(AssertOf([&] { shader->ShadeRow(0, 0, 3, row); }), "oops");
  EXPECT_EQ(ReportOf([&] { Shader::Create(shallow.surface.bitmap, attr, flat, Shader::kTile_None); }),
            "missing bitmap-core-shader: 16");
}

// A 32-bit colour in the pixel's domain, faded and laid over it.
uint32_t Faded(uint32_t color, uint32_t d, int scale) {
  Channels c = Split32(color);
  c = {c.a * scale / 256, c.r / 4 * scale / 256, c.g / 8 * scale / 256, c.b / 8 * scale / 256};
  if (c.a == 0) return d;
  const Channels q = Split16(d);
  const int u = c.a == 255 ? 0 : 256 - c.a;
  return Join16(c.r + q.r * u / 256, c.g + q.g * u / 256, c.b + q.b * u / 256);
}

TEST(BitmapBlitter, MappedSourcesOn16Bits) {
  Random random(3);
  hsGSrcOverMode over;
  for (int iteration = 0; iteration < 1000; ++iteration) {
    const Source source(random, random.Chance(50) ? B::kConfig_RGB32 : B::kConfig_ARGB32);
    Surface device(B::kConfig_RGB16, 24, 3, random), model(device);
    const bool filter = random.Chance(50), xfer = random.Chance(30);
    const hsMatrix matrix = RandomMatrix(random, random.Chance(30));
    hsMatrix inverse;
    if (!matrix.Invert(&inverse)) continue;
    const int alpha = random.Byte();
    hsGAttribute attr(filter ? hsGAttribute::kFilterBitmaps : 0u);
    attr.SetColor(uint16_t(alpha << 8), 0, 0, 0);
    if (xfer) attr.SetXferMode(&over);
    const auto blitter = hsAdopt(attr.GetBitmapBlitter(device.bitmap, 0, source.surface.bitmap, matrix));
    const int x = random.Below(24), width = random.Between(1, 24 - x);
    blitter->BlitRect(0, x, width, 3);
    for (int y = 0; y < 3; ++y)
      for (int i = x; i < x + width; ++i) {
        const hsPoint p = MapBack(inverse, i, y);
        uint32_t color = 0;
        if (!xfer) {
          ASSERT_TRUE(source.At(p, filter, Shader::kTile_Clamp, &color));
          model.Set(i, y, Faded(color, model.Get(i, y), alpha + 1));
        } else if (source.At({p.fX - kFixedHalf, p.fY - kFixedHalf}, false, Shader::kTile_None, &color)) {
          over.Xfer16(1, &color, model.bitmap.Row<uint16_t>(y) + i, nullptr);
        }
      }
    ASSERT_EQ(device, model) << iteration;
  }
}

TEST(BitmapBlitter, PaletteSourcesByIndexOrThroughAShader) {
  Random random(4);
  for (int iteration = 0; iteration < 600; ++iteration) {
    const Source source(random, B::kConfig_Index8);
    const Palette other(random, 100);
    const bool is16 = random.Chance(30), same = random.Chance(60), filter = random.Chance(20);
    const bool perspective = random.Chance(20);
    Surface device(is16 ? B::kConfig_RGB16 : B::kConfig_Index8, 24, 3, random, same ? &source.palette : &other);
    Surface model(device);
    const hsMatrix matrix = RandomMatrix(random, perspective);
    hsMatrix inverse;
    if (!matrix.Invert(&inverse)) continue;
    hsGAttribute attr(filter ? hsGAttribute::kFilterBitmaps : 0u);
    const int alpha = random.Chance(60) ? 255 : random.Byte();
    attr.SetColor(uint16_t(alpha << 8), 0, 0, 0);
    const auto blitter = hsAdopt(attr.GetBitmapBlitter(device.bitmap, 0, source.surface.bitmap, matrix));
    const bool indices = !is16 && same && !filter && !perspective && alpha == 255;
    EXPECT_EQ(dynamic_cast<hsGIndex8Affine*>(blitter.get()) != nullptr, indices);
    blitter->BlitRect(0, 2, 20, 3);
    if (indices) {
      for (int y = 0; y < 3; ++y)
        for (int x = 2; x < 22; ++x) {
          const hsPoint p = MapBack(inverse, x, y);
          const int ix = Tiled((p.fX + kFixedHalf) >> 16, source.surface.Width(), Shader::kTile_Clamp);
          const int iy = Tiled((p.fY + kFixedHalf) >> 16, source.surface.Height(), Shader::kTile_Clamp);
          if (!source.IsKey(ix, iy)) model.Set(x, y, source.surface.Get(ix, iy));
        }
    } else {
      const auto shader = hsAdopt(Shader::Create(source.surface.bitmap, attr, matrix, Shader::kTile_Clamp));
      shader->SetContext(device.bitmap, attr, matrix);
      attr.SetShader(shader.get());
      const auto shaded = hsAdopt(attr.GetBlitter(model.bitmap, 0, matrix));
      shaded->BlitRect(0, 2, 20, 3);
    }
    ASSERT_EQ(device, model) << iteration;
  }
}

// A source whose corners lie on both sides of the horizon can map to a quadrilateral that isn't convex.
TEST(BitmapBlitter, ABentQuadrilateralFillsItsPathWithTheSource) {
  Random random(6);
  uint32_t pixel = 0xFFFFFFFF;
  B source(B::kConfig_RGB32);
  source.fImage = &pixel;
  source.fWidth = source.fHeight = 1;
  source.fRowBytes = 4;
  hsMatrix matrix;
  const int32_t rows[2][3] = {{-5, -8, 12}, {-8, -5, 12}};
  for (int i = 0; i < 6; ++i) matrix.fMap[i / 3][i % 3] = rows[i / 3][i % 3] * kFixed1;
  matrix.fMap[2][0] = matrix.fMap[2][1] = -kFract1 / 4 * 3;
  Surface device(B::kConfig_RGB16, 32, 32, random), model(device);
  hsGAttribute attr;
  hsGRawDraw draw;
  draw.fBitmap = &device.bitmap;
  draw.fMatrix = &matrix;
  draw.fAttr = &attr;
  draw.DrawBitmap(source, 0, 0);
  hsGColorBlitter16Opaque white(model.bitmap, {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF});
  const hsRegion whole(model.Bounds());
  const hsPath path = PathOf("M 12 12 L 28 16 L 2 2 L 16 28 Z");
  HSScan::FillPath(&path, &whole, &white);
  EXPECT_EQ(device, model);
}

TEST(BitmapBlitter, PicksItsBlitter) {
  Random random(5);
  Palette palette(random, 200);
  Surface s16(B::kConfig_RGB16, 6, 6, random), s32(B::kConfig_RGB32, 2, 2, random), before(s16);
  Surface s8(B::kConfig_Index8, 6, 6, random, &palette), a8(B::kConfig_Alpha8, 6, 6, random);
  hsGSrcOverMode over;
  hsGAttribute attr;
  hsMatrix matrix;
  matrix.SetTranslate(kFixedHalf, kFixedHalf - 1);
  const auto blitter = hsAdopt(attr.GetBitmapBlitter(s16.bitmap, 0, s32.bitmap, matrix));
  EXPECT_NE(dynamic_cast<hsGSpriteBlitter*>(blitter.get()), nullptr);
  EXPECT_EQ(AssertOf([&] { blitter->BlitH(0, 0, 1); }), "bad offset");  // it lies at (1, 0)
  blitter->BlitH(0, 1, 1);
  EXPECT_EQ(s16.Get(1, 0), Pack(s32.Get(0, 0)));
  s16.Set(1, 0, before.Get(1, 0));

  hsMatrix flat, scale;
  flat.fMap[0][0] = flat.fMap[0][1] = flat.fMap[1][0] = flat.fMap[1][1] = 0x8000;
  scale.SetScale(2 * kFixed1, kFixed1, 0, 0);
  Surface empty(s8), kept(s8);
  empty.bitmap.fWidth = 0;
  struct {
    const Surface &device, &source;
    const hsMatrix& matrix;
    const char* report;
    hsGXferMode* mode = nullptr;
  } const cases[] = {
      {s16, s32, flat, "cannot invert matrix: 0"},
      {s8, s8, flat, ""},
      {s8, empty, scale, ""},
      {s16, s16, scale, "Assert Failed missing bitmap blitter"},
      {a8, s32, scale, "Assert Failed bad bitmap for ChooseIndex8Blitter"},
      {s32, s32, scale, "Assert Failed unsupported dst pixelsize", &over},
  };
  for (const auto& c : cases) {
    ReturnOnHalt halt;
    attr.SetXferMode(c.mode);
    hsAdopt(attr.GetBitmapBlitter(c.device.bitmap, 0, c.source.bitmap, c.matrix))->BlitRect(0, 0, 6, 6);
    const std::string report = halt.Reports().empty() ? "" : halt.Reports()[0];
    EXPECT_EQ(report.substr(0, report.find(" ::")), c.report);
  }
  EXPECT_EQ(s16, before);
  EXPECT_EQ(s8, kept);
}

}  // namespace
