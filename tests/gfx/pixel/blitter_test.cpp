// Blitters: which is chosen, and each against its rule on single pixels, over random places, coverage and clips.
#include <gtest/gtest.h>

#include <functional>
#include <typeindex>

#include "gfx/halt.h"
#include "gfx/pixel/fillrow.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgblitter16.h"
#include "gfx/pixel/hsgblitter8.h"
#include "gfx/pixel/hsgblittera.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgshaderblitter.h"
#include "gfx/pixel/pixelmodel.h"

namespace {

enum How { kSpan, kCovered, kBit };

// A new pixel from the old, the way it is asked for, and the coverage in force.
using Rule = std::function<uint32_t(uint32_t d, How how, int coverage)>;

Rule Rule16(const hsGColor& color, bool opaque) {
  const int a = color.fA >> 8, g = color.fG >> 11, b = color.fB >> 11;
  const int r6 = color.fR >> 10, r5 = color.fR >> 11;
  return [=](uint32_t d, How how, int c) {
    if (opaque) return Join16(r6, g, b);
    const int v = how == kCovered ? c * (a + 1) / 256 : a;
    if (how == kCovered && v == 0) return d;
    const Channels p = Split16(d);
    return Join16(Blend(how == kBit ? r6 : r5 * 2, p.r, v + 1), Blend(g, p.g, v + 1), Blend(b, p.b, v + 1));
  };
}

Rule Rule8(const hsGColor& color, const Palette& palette) {
  const Channels s{color.fA >> 8, color.fR >> 8, color.fG >> 8, color.fB >> 8};
  return [s, &palette](uint32_t d, How how, int c) {
    const Channels e = Split32(palette.colors[d]);
    if (how == kSpan) {
      // The sum's channels may run into each other.
      const Channels pre{s.a, s.r * (s.a + 1) / 256, s.g * (s.a + 1) / 256, s.b * (s.a + 1) / 256};
      return palette.Nearest(Join32(pre) + Scale32(palette.colors[d], 256 - s.a));
    }
    if (how == kCovered && c == 0) return d;
    const int scale = how == kBit ? s.a + 1 : (c + 1) * (s.a + 1) / 256;
    return palette.Nearest(Blend(s.r, e.r, scale), Blend(s.g, e.g, scale), Blend(s.b, e.b, scale));
  };
}

Rule RuleA(int a) {
  return [a](uint32_t d, How how, int c) {
    if (how == kSpan) return uint32_t(a + int(d) * (256 - a) / 256) & 255;
    return uint32_t(Blend(a, int(d), how == kBit ? a + 1 : c + 1));
  };
}

struct Mask : hsGMask {
  Mask(hsMaskType type, const hsIntRect& bounds, Random& random) {
    fMaskType = type;
    fBounds = bounds;
    fRowBytes = uint16_t(RowBytes(type, bounds.Width()) + random.Below(3));
    AllocImage();
    for (uint32_t i = 0; i < ImageSize(); ++i)
      fImage[i] = type == kMask_LCD ? uint8_t(random.Below(32)) : random.Byte();
  }
  int Coverage(int x, int y) const {
    const int dx = x - fBounds.fLeft;
    if (fMaskType == kMask_Bit) return Row(y)[dx / 8] >> (7 - dx % 8) & 1 ? 255 : 0;
    return Row(y)[dx];
  }
};

hsIntRect RandomRect(Random& random, const Surface& surface) {
  const int left = random.Below(surface.Width()), top = random.Below(surface.Height());
  return {left, top, random.Between(left + 1, surface.Width()), random.Between(top + 1, surface.Height())};
}

// One random call on the surface, and the rule for each pixel on the model.
void DrawOnce(hsGBlitter* blitter, bool takesCoverage, const Rule& rule, Random& random, Surface* surface,
              Surface* model) {
  const hsIntRect rect = RandomRect(random, *surface);
  const auto apply = [&](const hsIntRect& r, How how, const std::function<int(int, int)>& coverage,
                         const hsRegion* clip) {
    for (int y = r.fTop; y < r.fBottom; ++y)
      for (int x = r.fLeft; x < r.fRight; ++x) {
        const int c = coverage(x, y);
        const bool skipped = (clip && !clip->Contains(x, y)) || (how == kBit && c == 0);
        if (!skipped) model->Set(x, y, rule(model->Get(x, y), how, c));
      }
  };
  const auto full = [](int, int) { return 255; };
  const int kind = random.Below(takesCoverage ? 4 : 3);
  if (kind == 0) {
    blitter->BlitH(rect.fTop, rect.fLeft, rect.Width());
    apply({rect.fLeft, rect.fTop, rect.fRight, rect.fTop + 1}, kSpan, full, nullptr);
  } else if (kind == 1) {
    blitter->BlitRect(rect.fTop, rect.fLeft, rect.Width(), rect.Height());
    apply(rect, kSpan, full, nullptr);
  } else {
    const Mask mask(kind == 2 ? kMask_Bit : kMask_Alpha, rect, random);
    const hsRegion region = RandomRegion(random, surface->Bounds());
    const hsRegion* clip = random.Chance(60) && region.Bounds().Intersects(rect) ? &region : nullptr;
    blitter->BlitMask(mask, clip);
    apply(
        rect, kind == 2 ? kBit : kCovered, [&](int x, int y) { return mask.Coverage(x, y); }, clip);
  }
}

// The blitter of the paint, of the class expected, over many calls.
void Check(hsGAttribute* attr, int maskType, const std::type_info& expected, const Rule& rule, Random& random,
           uint8_t config, const Palette* palette) {
  Surface surface(config, random.Between(1, 60), random.Between(1, 6), random, palette), model(surface);
  const auto blitter = hsAdopt(attr->GetBlitter(surface.bitmap, maskType, hsMatrix()));
  ASSERT_EQ(std::type_index(typeid(*blitter)), std::type_index(expected));
  for (int i = 0; i < 6; ++i) {
    DrawOnce(blitter.get(), maskType == kMask_Alpha, rule, random, &surface, &model);
    ASSERT_EQ(surface, model);
  }
  uint32_t value;
  if (const hsGBitmap* target = blitter->GetDirectTarget(&value)) {
    EXPECT_EQ(target->fImage, surface.bitmap.fImage);
    EXPECT_EQ(value, rule(0, kSpan, 255));
  }
}

uint16_t Wide(Random& random) { return uint16_t(random.Byte() << 8 | random.Byte()); }

// One paint for all iterations, so that most blitters are made over from the one before.
TEST(Blitter, SolidColoursFollowTheirRules) {
  Random random(1);
  Palette palette(random, 200), other(random, 256);
  hsGAttribute attr;
  for (int iteration = 0; iteration < 1500 && !HasFatalFailure(); ++iteration) {
    const hsGColor color{random.Chance(40) ? uint16_t(random.Chance(50) ? 0xFFFF : 0xFF00) : Wide(random), Wide(random),
                         Wide(random), Wide(random)};
    attr.SetColor(&color);
    const int maskType = random.Below(2), kind = random.Below(3);
    const bool full = color.fA >> 8 == 255 && maskType == kMask_Bit;
    const Palette& p = random.Chance(50) ? palette : other;
    const int index = kind == 2 && random.Chance(30) ? random.Below(200) : -1;
    attr.SetColorIndex(index);
    const auto constant = [](uint32_t pixel) { return [=](uint32_t, How, int) { return pixel; }; };
    SCOPED_TRACE(iteration);
    if (kind == 0) {
      Check(&attr, maskType, full ? typeid(hsGColorBlitter16Opaque) : typeid(hsGColorBlitter16), Rule16(color, full),
            random, hsGBitmap::kConfig_RGB16, nullptr);
    } else if (kind == 1) {
      Check(&attr, maskType, full ? typeid(hsGColorBlitterAOpaque) : typeid(hsGColorBlitterA),
            full ? Rule(constant(255)) : RuleA(color.fA >> 8), random, hsGBitmap::kConfig_Alpha8, nullptr);
    } else if (maskType == kMask_Bit && (full || index >= 0)) {
      const uint32_t pixel = index >= 0 ? uint32_t(index) : p.Nearest(color.fR >> 8, color.fG >> 8, color.fB >> 8);
      Check(&attr, maskType, typeid(hsGIndexBlitter), constant(pixel), random, hsGBitmap::kConfig_Index8, &p);
    } else {
      // An index is an opaque colour here, so that its edges blend.
      const hsGColor drawn = index < 0 ? color : hsWidenColor32(p.colors[size_t(index)] | 0xFF000000);
      Check(&attr, maskType, typeid(hsGColorBlitter8), Rule8(drawn, p), random, hsGBitmap::kConfig_Index8, &p);
    }
  }
}

// Coverage of shapes: stretches of none, of all and of anything between, in rows of any length.
TEST(Blitter, RowsOfCoverageAreBlendedPixelByPixel) {
  Random random(17);
  for (int iteration = 0; iteration < 2000; ++iteration) {
    const hsGColor color{random.Chance(60) ? uint16_t(0xFFFF) : Wide(random), Wide(random), Wide(random), Wide(random)};
    Surface surface(hsGBitmap::kConfig_RGB16, random.Between(1, 250), 1, random), plain(surface), model(surface);
    const int x = random.Below(surface.Width()), width = random.Between(1, surface.Width() - x);
    std::vector<uint8_t> coverage(static_cast<size_t>(width));
    const int changes = random.Chance(50) ? 3 : 40;
    for (size_t i = 0; i < coverage.size(); ++i)
      coverage[i] = i > 0 && !random.Chance(changes) ? coverage[i - 1] : random.Byte();
    hsGColorBlitter16 blitter(surface.bitmap, color);
    blitter.fAlpha = coverage.data();
    blitter.BlitH(0, x, width);
    blitter.BlendCoveredPlain(static_cast<uint16_t*>(plain.bitmap.fImage) + x, width, coverage.data());
    const Rule rule = Rule16(color, false);
    for (int i = 0; i < width; ++i) model.Set(x + i, 0, rule(model.Get(x + i, 0), kCovered, coverage[size_t(i)]));
    ASSERT_EQ(surface, model) << iteration;
    ASSERT_EQ(plain, model) << iteration;
  }
}

// Wherever a row begins and however long it is, by the widest stores that there are and by the plain ones.
TEST(FillRows, EndWhereTheyShould) {
  constexpr int kRowPixels = 300;
  for (const auto fill : {hsFillRows16, hsFillRowsPlain16})
    for (int width = 1; width <= 260; ++width)
      for (int left = 0; left <= 33; left += width < 80 ? 1 : 11) {
        std::vector<uint16_t> pixels(2 * kRowPixels, 7), want = pixels;
        fill(pixels.data() + left, kRowPixels * 2, width, 2, 0xABCD);
        for (int y = 0; y < 2; ++y) std::fill_n(want.begin() + y * kRowPixels + left, width, uint16_t{0xABCD});
        ASSERT_EQ(pixels, want) << width << " from " << left;
      }
}

TEST(Blitter, LCDMasksDarkenWhereNothingClips) {
  Random random(2);
  Palette palette(random, 256);
  for (int iteration = 0; iteration < 200; ++iteration) {
    const bool is16 = random.Chance(50);
    Surface surface(is16 ? hsGBitmap::kConfig_RGB16 : hsGBitmap::kConfig_Index8, 20, 5, random, &palette),
        model(surface);
    const Mask mask(kMask_LCD, RandomRect(random, surface), random);
    const int offset = random.Below(3);
    hsGAttribute attr;
    const auto blitter = hsAdopt(attr.GetBlitter(surface.bitmap, kMask_LCD, hsMatrix()));
    const hsRegion clip(surface.Bounds());
    blitter->BlitLCDMask(mask, &clip, offset);
    EXPECT_EQ(surface, model);
    blitter->BlitLCDMask(mask, nullptr, offset);
    for (int y = mask.fBounds.fTop; y < mask.fBounds.fBottom; ++y)
      for (int x = mask.fBounds.fLeft; x < mask.fBounds.fRight; ++x) {
        const uint8_t* c = mask.Row(y) + 2 - offset + 3 * (x - mask.fBounds.fLeft);
        const uint32_t d = model.Get(x, y);
        const auto dark = [](int v, int by) { return v * (32 - by) / 32; };
        const Channels p = is16 ? Split16(d) : Split32(palette.colors[d]);
        model.Set(x, y,
                  is16 ? Join16(dark(p.r % 32, c[0]), dark(p.g, c[1]), dark(p.b, c[2]))
                       : palette.Nearest(dark(p.r, c[0]), dark(p.g, c[1]), dark(p.b, c[2])));
      }
    EXPECT_EQ(surface, model);
    if (iteration == 0) {
      EXPECT_EQ(AssertOf([&] { blitter->BlitLCDMask(mask, nullptr, 3); }), "bad lcd offset");
    }
  }
}

// A colour for each place, premultiplied.
class PlaceShader : public hsGShader {
 public:
  explicit PlaceShader(bool opaque) : fOpaque(opaque) {}
  static uint32_t At(int x, int y, bool opaque) {
    const uint32_t hash = (uint32_t(x) * 2654435761u ^ uint32_t(y) * 40503u) * 2246822519u;
    const int a = opaque ? 255 : hash % 5 == 0 ? 0 : hash % 5 == 1 ? 255 : int(hash >> 24);
    return (Scale32(hash | 0xFF000000, a + 1) & 0xFFFFFF) | uint32_t(a) << 24;
  }
  bool IsOpaque() const override { return fOpaque; }
  void ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) override {
    for (int i = 0; i < count; ++i) colors[i] = At(x + i, y, fOpaque);
  }

 private:
  bool fOpaque;
};

TEST(Blitter, ShadersGoThroughTheirModeInChunks) {
  Random random(3);
  Palette palette(random, 200);
  hsGSrcMode src;
  hsGSrcOverMode over;
  const uint8_t configs[] = {hsGBitmap::kConfig_RGB16, hsGBitmap::kConfig_Index8, hsGBitmap::kConfig_Alpha8};
  for (int iteration = 0; iteration < 600; ++iteration) {
    const uint8_t config = configs[random.Below(3)];
    Surface surface(config, random.Between(20, 150), 4, random, &palette), model(surface);
    hsGAttribute attr;
    const hsGColor color{Wide(random), Wide(random), Wide(random), Wide(random)};
    attr.SetColor(&color);
    attr.SetColorIndex(random.Chance(30) ? 5 : -1);  // plays no part
    const bool hasShader = random.Chance(70), opaque = random.Chance(50);
    const auto shader = hsMake<PlaceShader>(opaque);
    if (hasShader) attr.SetShader(shader.get());
    hsGXferMode* given =
        !hasShader || random.Chance(30) ? (random.Chance(50) ? static_cast<hsGXferMode*>(&src) : &over) : nullptr;
    if (given) attr.SetXferMode(given);
    hsGXferMode& mode = given ? *given : opaque ? static_cast<hsGXferMode&>(src) : over;

    const auto blitter = hsAdopt(attr.GetBlitter(surface.bitmap, kMask_Alpha, hsMatrix()));
    const hsIntRect rect = RandomRect(random, surface);
    const Mask mask(kMask_Alpha, rect, random);
    const bool covered = random.Chance(50);
    if (covered) {
      blitter->BlitMask(mask, nullptr);
    } else {
      blitter->BlitRect(rect.fTop, rect.fLeft, rect.Width(), rect.Height());
    }
    for (int y = rect.fTop; y < rect.fBottom; ++y)
      for (int x = rect.fLeft; x < rect.fRight; x += 32) {
        std::vector<uint32_t> colors;
        for (int i = x; i < std::min(x + 32, rect.fRight); ++i)
          colors.push_back(hasShader ? PlaceShader::At(i, y, opaque) : hsPremultiply(color));
        Xfer(mode, colors, x, y, covered ? mask.Row(y) + (x - rect.fLeft) : nullptr, &model);
      }
    ASSERT_EQ(surface, model) << iteration;
  }
}

// The spans that the clip leaves go to the mode whole, so that on a palette error runs along each.
TEST(Blitter, MasksOfThreePlanesAreLit) {
  Random random(4);
  Palette palette(random, 200);
  hsGSrcMode src;
  hsGSrcOverMode over;
  for (int iteration = 0; iteration < 300; ++iteration) {
    const bool is16 = random.Chance(50), hasShader = random.Chance(50), replaces = random.Chance(40);
    Surface surface(is16 ? hsGBitmap::kConfig_RGB16 : hsGBitmap::kConfig_Index8, 90, 4, random, &palette),
        model(surface);
    hsGAttribute attr;
    const hsGColor color{Wide(random), Wide(random), Wide(random), Wide(random)};
    attr.SetColor(&color);
    const auto shader = hsMake<PlaceShader>(false);
    if (hasShader) attr.SetShader(shader.get());
    if (replaces) attr.SetXferMode(&src);
    const auto blitter = hsAdopt(attr.GetBlitter(surface.bitmap, kMask_3D, hsMatrix()));
    const Mask mask(kMask_3D, RandomRect(random, surface), random);
    const hsRegion clip = RandomRegion(random, surface.Bounds());
    const bool clipped = random.Chance(50);
    blitter->BlitMask(mask, clipped ? &clip : nullptr);

    for (int y = mask.fBounds.fTop; y < mask.fBounds.fBottom; ++y) {
      std::vector<uint32_t> span;
      for (int x = mask.fBounds.fLeft; x <= mask.fBounds.fRight; ++x) {
        if (x == mask.fBounds.fRight || (clipped && !clip.Contains(x, y))) {
          if (!span.empty())
            Xfer(replaces ? static_cast<hsGXferMode&>(src) : over, span, x - int(span.size()), y, nullptr, &model);
          span.clear();
          continue;
        }
        const uint8_t* p = mask.Row(y) + (x - mask.fBounds.fLeft);
        const Channels c = Split32(hasShader ? PlaceShader::At(x, y, false) : hsPremultiply(color));
        const int a2 = p[0] * (c.a + 1) / 256, m = p[mask.PlaneSize()] + 1;
        const int lit = p[2 * mask.PlaneSize()] * (hasShader ? c.a : c.a + 1) / 256;
        const auto channel = [&](int v) { return std::min(v * m / 256 + lit, a2); };
        const bool nothing = a2 == 0 || (hasShader && c.a == 0);
        span.push_back(nothing ? 0 : Join32({a2, channel(c.r), channel(c.g), channel(c.b)}));
      }
    }
    ASSERT_EQ(surface, model) << iteration;
  }
}

TEST(Blitter, ContractsAreChecked) {
  Random random(6);
  Palette palette(random, 200);
  Surface s16(hsGBitmap::kConfig_RGB16, 9, 2, random), s8(hsGBitmap::kConfig_Index8, 9, 2, random, &palette);
  Surface s32(hsGBitmap::kConfig_ARGB32, 9, 2, random);
  const Mask bits(kMask_Bit, {0, 0, 3, 1}, random), bytes(kMask_Alpha, {0, 0, 3, 1}, random);
  const hsRegion away(hsIntRect{7, 0, 9, 1});
  const auto flat = [](hsGBlitter* b) { b->BlitRect(0, 0, 3, 0); };
  const auto coveredRect = [](hsGBlitter* b) {
    const uint8_t coverage[3] = {};
    b->fAlpha = coverage;
    b->BlitRect(0, 0, 3, 1);
  };
  struct {
    const Surface& surface;
    uint16_t alpha;
    std::function<void(hsGBlitter*)> call;
    const char* report;
  } const cases[] = {
      {s16, 0xFFFF, flat, "bad blit height"},
      {s16, 0x8000, flat, "bad blit size"},
      {s8, 0xFFFF, flat, "bad width,height"},
      {s8, 0x8000, coveredRect, "GetAlpha() != nil in BlitTile"},
      {s16, 0x8000, coveredRect, "GetAlpha() != nil in BlitTile"},
      {s16, 0x8000, [&](hsGBlitter* b) { b->BlitMask(bits, &away); }, "mask doesn't intersect clip"},
      {s16, 0xFFFF, [&](hsGBlitter* b) { b->BlitMask(bytes, nullptr); }, "bad masktype"},
  };
  hsGAttribute attr;
  for (const auto& c : cases) {
    attr.SetColor(c.alpha, 0, 0, 0);
    const auto blitter = hsAdopt(attr.GetBlitter(c.surface.bitmap, 0, hsMatrix()));
    EXPECT_EQ(AssertOf([&] { c.call(blitter.get()); }), c.report);
  }
  EXPECT_EQ(ReportOf([&] { attr.GetBlitter(s32.bitmap, 0, hsMatrix()); }), "nil param: 0");
}

}  // namespace
