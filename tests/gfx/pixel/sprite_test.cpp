// Sprites: every member against its rule on single pixels.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgalphamode.h"
#include "gfx/pixel/hsgsprite_choose.h"
#include "gfx/pixel/pixelmodel.h"

namespace {

using B = hsGBitmap;

struct Scene {
  Scene(Random& random, uint8_t deviceConfig, uint8_t sourceConfig, bool sameTable)
      : palette(random, 200),
        other(random, 150),
        onto(sameTable ? palette : other),
        rows(random.Chance(30) ? 60 : 5),  // from some size on palettes are drawn another way
        device(deviceConfig, 70, rows, random, &onto),
        source(sourceConfig, random.Between(1, 160), random.Between(1, rows - 1), random, &palette) {
    if (random.Chance(50)) source.bitmap.SetFlags(B::kHasTransparent);
    source.bitmap.fTransparentIndex = uint8_t(source.Get(0, 0));
    if (source.bitmap.fPixelSize == 32)
      for (int y = 0; y < source.Height(); ++y)
        for (int x = 0; x < source.Width(); ++x) {
          if (x > 0 && random.Chance(40)) {
            source.Set(x, y, source.Get(x - 1, y));
            continue;
          }
          const int a = random.Byte();  // premultiplied
          source.Set(x, y, Join32({a, random.Below(a + 1), random.Below(a + 1), random.Below(a + 1)}));
        }
  }
  bool IsKey(uint32_t s) const {
    return source.bitmap.fConfig == B::kConfig_Index8 && (source.bitmap.fFlags & B::kHasTransparent) &&
           s == source.bitmap.fTransparentIndex;
  }

  Palette palette, other;
  const Palette& onto;
  int rows;
  Surface device, source;
};

int Widen5(int v) { return v * 8 + v / 4; }
int Widen6(int v) { return v * 4 + v / 16; }

uint32_t On16From32(uint32_t p, uint32_t d, int scale, bool hasAlpha) {
  const Channels s = Split32(p), q = Split16(d);
  if (!hasAlpha) {
    if (scale == 256) return Pack(p);
    return Join16(Blend(s.r / 4, q.r, scale), Blend(s.g / 8, q.g, scale), Blend(s.b / 8, q.b, scale));
  }
  const int u = 256 - s.a;
  if (s.a == 0) return d;
  if (scale == 256) {
    if (s.a == 255) return Pack(p);
    const auto over = [u](int from, int d5) { return (from + Widen5(d5) * u / 256) / 8; };
    return Join16(over(s.r, q.r % 32), over(s.g, q.g), over(s.b, q.b));
  }
  const auto over = [&](int from, int w) { return Blend(from + w * u / 256, w, scale); };
  return Join16(over(s.r, Widen6(q.r)) / 4, over(s.g, Widen5(q.g)) / 8, over(s.b, Widen5(q.b)) / 8);
}

// Without a transfer mode.
uint32_t Plain(const Scene& scene, uint32_t s, uint32_t d, int alpha) {
  const int scale = alpha + 1;
  const uint8_t from = scene.source.bitmap.fConfig, onto = scene.device.bitmap.fConfig;
  if (alpha == 0 || scene.IsKey(s)) return d;
  if (onto == B::kConfig_Alpha8) return uint32_t(int(s) + int(d) - int(s) * (int(d) + 1) / 256);
  if (from == B::kConfig_RGB16) return s;
  if (onto == B::kConfig_RGB16 && from != B::kConfig_Index8) return On16From32(s, d, scale, from == B::kConfig_ARGB32);
  if (from == B::kConfig_RGB32) {
    const Channels p = Split32(s), e = Split32(scene.onto.colors[d]);
    if (scale == 256) return scene.onto.Nearest(s);
    return scene.onto.Nearest(Blend(p.r, e.r, scale), Blend(p.g, e.g, scale), Blend(p.b, e.b, scale));
  }
  // A palette source.
  const Channels p = Split32(scene.palette.colors[s]);
  const int v = (p.a + 1) * scale / 256;
  if (onto == B::kConfig_RGB16) {
    const Channels q = Split16(d);
    if (scale == 256) return Join16(p.r / 4, p.g / 8, p.b / 8);
    return Join16(Blend(p.r / 4, q.r, v), Blend(p.g / 8, q.g, v), Blend(p.b / 8, q.b, v));
  }
  if (scale == 256) return &scene.onto == &scene.palette ? s : scene.onto.Nearest(scene.palette.colors[s]);
  const Channels e = Split32(scene.onto.colors[d]);
  return scene.onto.Nearest(Blend(p.r, e.r, v), Blend(p.g, e.g, v), Blend(p.b, e.b, v));
}

// Through a mode: its source colours, and how many it is given at a time.
uint32_t Color(const Scene& scene, uint32_t s, int alpha) {
  switch (scene.source.bitmap.fConfig) {
    case B::kConfig_Index8: return scene.IsKey(s) ? 0 : scene.palette.colors[s];
    case B::kConfig_RGB32: return Scale32(s | 0xFF000000, alpha + 1);
    default: return Scale32(s, alpha + 1);
  }
}
int Chunk(const Scene& scene, int alpha) {
  if (scene.source.bitmap.fConfig == B::kConfig_Index8) return 32;
  const bool ready = scene.source.bitmap.fConfig == B::kConfig_ARGB32 && alpha == 255;
  return scene.device.bitmap.fConfig == B::kConfig_Index8 && !ready ? 64 : 1 << 20;
}

class NoteOpaque : public hsGSrcMode {
 public:
  void SetOpaque(bool value) override { opaque = value; }
  // The middle bytes stay the device's.
  void Xfer32(int32_t count, const hsGColor32* src, hsGColor32* dst, const uint8_t*) override {
    for (int i = 0; i < count; ++i) dst[i] = (src[i] & 0xFF0000FF) | (dst[i] & 0x00FFFF00);
  }
  bool opaque = true;
};

struct Pair {
  uint8_t device, source;
  bool needsFull;  // only an opaque paint
  bool plain, xfer;
};

const Pair kPairs[] = {
    {B::kConfig_RGB16, B::kConfig_RGB16, true, true, false},
    {B::kConfig_RGB16, B::kConfig_RGB32, false, true, true},
    {B::kConfig_RGB16, B::kConfig_ARGB32, false, true, true},
    {B::kConfig_RGB16, B::kConfig_Index8, false, true, true},
    {B::kConfig_Index8, B::kConfig_RGB32, false, true, true},
    {B::kConfig_Index8, B::kConfig_ARGB32, false, true, true},
    {B::kConfig_Index8, B::kConfig_Index8, false, true, true},
    {B::kConfig_Alpha8, B::kConfig_Alpha8, false, true, true},
    {B::kConfig_ARGB32, B::kConfig_RGB32, false, false, true},
    {B::kConfig_RGB32, B::kConfig_ARGB32, false, false, true},
};

TEST(Sprite, EveryMemberFollowsItsRule) {
  Random random(1);
  NoteOpaque mode;
  hsGSrcOverMode over;
  for (int iteration = 0; iteration < 3000; ++iteration) {
    const Pair& pair = kPairs[iteration % int(std::size(kPairs))];
    Scene scene(random, pair.device, pair.source, random.Chance(50));
    Surface model(scene.device);
    const int alpha = pair.needsFull ? 255 : random.Byte();
    const bool given = pair.xfer && (!pair.plain || random.Chance(40));
    const hsGColor color{uint16_t(alpha << 8), Random(7).Byte(), 0, 0};
    const int left = random.Between(-20, 60), top = random.Between(-2, 4);
    mode.opaque = true;
    const auto sprite = hsAdopt(
        ChooseSpriteBlitter(scene.device.bitmap, scene.source.bitmap, left, top, color, given ? &mode : nullptr));
    ASSERT_TRUE(sprite);
    EXPECT_EQ(mode.opaque, !given);
    hsIntRect rect{left, top, left + scene.source.Width(), top + scene.source.Height()};
    if (!rect.Intersect(scene.device.Bounds())) continue;
    rect.fLeft = random.Between(rect.fLeft, rect.fRight - 1);
    rect.fRight = random.Between(rect.fLeft + 1, rect.fRight);
    if (random.Chance(40)) rect.fBottom = rect.fTop + 1;
    if (rect.Height() == 1) {
      sprite->BlitH(rect.fTop, rect.fLeft, rect.Width());
    } else {
      sprite->BlitRect(rect.fTop, rect.fLeft, rect.Width(), rect.Height());
    }

    // ARGB on a palette has a mode whether one is given or not.
    hsGXferMode* through = given ? &mode : nullptr;
    if (pair.device == B::kConfig_Index8 && pair.source == B::kConfig_ARGB32 && !given && alpha) through = &over;
    for (int y = rect.fTop; y < rect.fBottom; ++y) {
      const auto at = [&](int x) { return scene.source.Get(x - left, y - top); };
      if (!through || pair.device == B::kConfig_Alpha8) {
        for (int x = rect.fLeft; x < rect.fRight; ++x)  // on coverage the mode is src
          model.Set(x, y, through ? at(x) : Plain(scene, at(x), model.Get(x, y), alpha));
        continue;
      }
      for (int x = rect.fLeft; x < rect.fRight;) {
        std::vector<uint32_t> colors;
        for (int space = Chunk(scene, alpha); space > 0 && x < rect.fRight; --space, ++x)
          colors.push_back(Color(scene, at(x), alpha));
        Xfer(*through, colors, x - int(colors.size()), y, nullptr, &model);
      }
    }
    ASSERT_EQ(scene.device, model) << iteration << ": " << int(pair.source) << " on " << int(pair.device) << " alpha "
                                   << alpha << " given " << given;
  }
}

TEST(Sprite, RetargetTakesSourcesOfTheDevicesDepth) {
  Random random(3);
  Palette palette(random, 200);
  Surface device(B::kConfig_RGB16, 9, 3, random), source(B::kConfig_RGB16, 4, 2, random);
  Surface next(B::kConfig_RGB16, 5, 1, random), deep(B::kConfig_RGB32, 5, 1, random);
  const hsGColor full{0xFFFF, 0, 0, 0};
  auto sprite = hsAdopt(ChooseSpriteBlitter(device.bitmap, source.bitmap, 1, 1, full, nullptr));
  EXPECT_FALSE(sprite->Retarget(deep.bitmap, 0, 0));
  EXPECT_TRUE(sprite->Retarget(next.bitmap, 3, 2));
  sprite->BlitH(2, 4, 4);
  for (int x = 4; x < 8; ++x) EXPECT_EQ(device.Get(x, 2), next.Get(x - 3, 0));

  // A member that reads 32 bits must not be given 16.
  sprite = hsAdopt(ChooseSpriteBlitter(device.bitmap, deep.bitmap, 0, 0, full, nullptr));
  EXPECT_FALSE(sprite->Retarget(next.bitmap, 0, 0));
  // A paint that draws nothing takes anything.
  sprite = hsAdopt(ChooseSpriteBlitter(device.bitmap, deep.bitmap, 0, 0, {0x00FF, 0, 0, 0}, nullptr));
  EXPECT_TRUE(sprite->Retarget(next.bitmap, 0, 0));
}

TEST(Sprite, ReportsWhatItCannotDraw) {
  Random random(4);
  Palette palette(random, 200);
  Surface s16(B::kConfig_RGB16, 4, 2, random), s24(B::kConfig_RGB24, 4, 2, random);
  Surface s8(B::kConfig_Index8, 4, 2, random, &palette), s32(B::kConfig_RGB32, 4, 2, random);
  Surface a8(B::kConfig_Alpha8, 4, 2, random);
  const hsGColor full{0xFFFF, 0, 0, 0}, half{0x8000, 0, 0, 0};
  const std::tuple<const Surface&, const Surface&, hsGColor, std::string> choices[] = {
      {s24, s32, full, "missing sprite blitter: 0"},
      {s16, s16, half, "throw if false: 0"},
      {a8, s8, full, "throw error: 1"},
      {s8, s16, full, "unsupported source pixelsize: 16"},
  };
  for (const auto& [device, source, color, report] : choices)
    EXPECT_EQ(ReportOf([&, &device = device, &source = source, &color = color] {
                ChooseSpriteBlitter(device.bitmap, source.bitmap, 0, 0, color, nullptr);
              }),
              report);
  // From (1, 1) on.
  const std::tuple<const Surface&, hsIntRect, const char*> draws[] = {{s32, {0, 1, 1, 2}, "bad offset"},
                                                                      {s32, {1, 0, 2, 1}, "bad offset"},
                                                                      {s32, {2, 1, 6, 2}, "bad width"},
                                                                      {s32, {2, 2, 5, 4}, "bad height"},
                                                                      {s8, {2, 1, 6, 2}, "bad count"}};
  for (const auto& [source, r, report] : draws) {
    const auto sprite = hsAdopt(ChooseSpriteBlitter(s16.bitmap, source.bitmap, 1, 1, full, nullptr));
    EXPECT_EQ(AssertOf([&, &r = r] { sprite->BlitRect(r.fTop, r.fLeft, r.Width(), r.Height()); }), report);
  }
}

}  // namespace
