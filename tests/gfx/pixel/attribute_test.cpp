// The paint: what it refuses, what it drops, what it copies, and its effects.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgcreateproc.h"
#include "gfx/pixel/hsgpatheffectapplier.h"
#include "gfx/pixel/hsgshader.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/vector/hsgblitter.h"
#include "gfx/vector/hsgpatheffect.h"
#include "gfx/vector/hsmeta.h"
#include "gfx/vector/pathtext.h"

namespace {

class PlainShader : public hsGShader {
 public:
  using hsGShader::hsGShader;
  void SetContext(const hsGBitmap&, const hsGAttribute&, const hsMatrix&) override { ++contexts; }
  void ShadeRow(int32_t, int32_t, int32_t count, hsGColor32 colors[]) override { std::fill_n(colors, count, 0); }
  int contexts = 0;
};

// An effect with an amount that grows with the size it was made for.
class ShiftEffect : public hsGPathEffect {
 public:
  ShiftEffect(int32_t stdSize, hsFixed shift) : hsGPathEffect(stdSize), fShift(shift) {}
  ShiftEffect(const void** cursor, int32_t size) : hsGPathEffect(cursor, size) {
    std::memcpy(&fShift, *cursor, sizeof fShift);
    fShift = hsFixMul(fShift, fScale);
  }
  static hsGSizedFlattenable* Create(const void** cursor, int32_t size) { return new ShiftEffect(cursor, size); }

  uint32_t GetCreateProc() const override { return fStdSize ? hsGRegisterCreateProc(&Create) : 0; }
  int32_t Flatten(void* buffer) const override {
    const int32_t base = hsGPathEffect::Flatten(buffer);
    if (buffer) std::memcpy(static_cast<char*>(buffer) + base, &fShift, sizeof fShift);
    return base + 4;
  }
  bool FilterPath(const hsMatrix*, hsScalar*, const hsPath*, hsPath*) const override { return false; }

  hsFixed fShift;
};

TEST(Attribute, RefusesValuesAndKeepsTheOldOnes) {
  ReturnOnHalt halt;  // none of these may halt
  hsGAttribute attr(0x80000001);
  attr.SetFlags(0x10000);
  attr.SetFlags(0x100);
  EXPECT_EQ(attr.Flags(), 0x80000001u);
  attr.SetFlags(0x800030FF & ~0x2000u);
  EXPECT_EQ(attr.Flags(), 0x800010FFu);
  attr.SetTextSize(0);
  EXPECT_EQ(attr.TextSize(), 12 * kFixed1);
  attr.SetCapType(3);
  attr.SetCapType(uint32_t(-1));
  EXPECT_EQ(attr.Cap(), 0);
  attr.SetFrameSize(-1);
  attr.SetMiterLimit(-1);
  attr.SetMinWidth(-1);
  attr.SetColor(nullptr);
  EXPECT_EQ(attr.FrameSize(), 0);
  EXPECT_EQ(attr.MiterLimit(), 4 * kFixed1);
  EXPECT_EQ(attr.Color(), (hsGColor{0xFFFF, 0, 0, 0}));
  hsGTextSpacing spacing;
  spacing.fFlags = 2;
  spacing.fAlignment = 3;
  attr.SetTextSpacing(&spacing);
  EXPECT_FALSE(attr.GetTextSpacing(nullptr));
  spacing.fFlags = 1;
  attr.SetTextSpacing(&spacing);
  EXPECT_TRUE(attr.GetTextSpacing(nullptr));
  hsGTextFace face, out;
  face.fSkewX = 5;
  attr.SetTextFace(&face);
  face.fScaleX = 0;
  attr.SetTextFace(&face);
  face.fScaleX = 2 * kFixed1;
  face.fUnderlineThickness = -1;
  attr.SetTextFace(&face);
  ASSERT_TRUE(attr.GetTextFace(&out));
  EXPECT_EQ(out.fScaleX, kFixed1);
  face = {};
  attr.SetTextFace(&face);  // says nothing: freed
  EXPECT_FALSE(attr.GetTextFace(&out));
  EXPECT_TRUE(ReturnOnHalt::Reports().empty());
}

TEST(Attribute, PacksCapAndJoin) {
  hsGAttribute attr;
  const uint32_t styles[][2] = {{0, 0}, {4, 4}, {8, 8}, {12, 4}, {1, 1}, {2, 2}, {3, 1}, {10, 10}, {0xF0, 0}};
  for (const auto& [style, back] : styles) {
    attr.SetCapJoin(style);
    EXPECT_EQ(attr.GetCapJoinStyle(), back) << style;
  }
}

TEST(Attribute, StrokeWidthReachesTheMinimumOnTheDevice) {
  hsGAttribute attr;
  attr.SetFrameSize(kFixed1);
  hsMatrix matrix;
  matrix.SetScale(kFixed1 / 4, kFixed1 / 2, 0, 0);
  EXPECT_EQ(attr.GetStrokeWidth(&matrix), kFixed1);
  attr.SetMinWidth(kFixed1);
  EXPECT_EQ(attr.GetStrokeWidth(nullptr), kFixed1);
  EXPECT_EQ(attr.GetStrokeWidth(&matrix), 4 * kFixed1);  // the smaller scale decides
  matrix.fMap[2][0] = kFract1;                           // perspective doesn't
  matrix.fMap[0][2] = 10 * kFixed1;
  EXPECT_EQ(attr.GetStrokeWidth(&matrix), 4 * kFixed1);
  matrix.SetScale(7, kFixed1, 0, 0);  // too small to divide by
  EXPECT_EQ(attr.GetStrokeWidth(&matrix), kFixed1);
  matrix.SetScale(2 * kFixed1, kFixed1, 0, 0);
  EXPECT_EQ(attr.GetStrokeWidth(&matrix), kFixed1);
}

TEST(Attribute, KeepsItsBlitterUntilAModeOrAShaderIsSet) {
  Random random(1);
  Surface surface(hsGBitmap::kConfig_RGB16, 4, 4, random);
  hsGAttribute attr;
  const auto get = [&] {
    hsGBlitter* blitter = attr.GetBlitter(surface.bitmap, 0, hsMatrix());
    blitter->UnRef();  // the paint holds it too
    return blitter;
  };
  hsGBlitter* first = get();
  first->Ref();
  attr.SetColor(0xFF00, 1, 2, 3);
  EXPECT_EQ(get(), first);
  attr.SetMaskFilter(nullptr);
  EXPECT_EQ(get(), first);
  EXPECT_EQ(first->RefCount(), 2);
  attr.SetShader(nullptr);
  EXPECT_EQ(first->RefCount(), 1);
  first->UnRef();

  const auto shader = hsMake<PlainShader>();
  attr.SetShader(shader.get());
  attr.SetShader(shader.get());
  EXPECT_EQ(shader->RefCount(), 2);
  first = get();
  first->Ref();
  EXPECT_NE(get(), first);  // shader blitters are never made over
  EXPECT_EQ(shader->contexts, 2);
  first->UnRef();
  hsGAttribute copy;
  copy.CopyFrom(attr);
  attr.SetShader(nullptr);
  EXPECT_EQ(copy.Shader(), shader.get());
  EXPECT_EQ(shader->RefCount(), 2);
}

TEST(Attribute, CopyForASizeRebuildsWhatCanBe) {
  auto effect = hsMake<ShiftEffect>(10, 300);
  hsGAttribute attr;
  attr.SetPathEffect(effect.get());
  const auto shiftAt = [&](int32_t size) {
    const auto copy = hsAdopt(attr.MakeCopyForScale(size));
    const auto* made = static_cast<const ShiftEffect*>(copy->PathEffect());
    return std::pair(made == effect.get(), hsFixed{made->fShift});
  };
  EXPECT_EQ(shiftAt(25), std::pair(false, 750));
  EXPECT_EQ(shiftAt(10), std::pair(true, 300));
  attr.SetTextSize(20);
  EXPECT_EQ(shiftAt(0), std::pair(false, 600));
  EXPECT_EQ(hsGAttribute::FlattenEffect(*effect, nullptr), 12);

  effect = hsMake<ShiftEffect>(0, 300);  // has no create procedure
  attr.SetPathEffect(effect.get());
  EXPECT_EQ(shiftAt(25), std::pair(true, 300));
  EXPECT_EQ(AssertOf([&] { hsGAttribute::FlattenEffect(*effect, nullptr); }), "need create-proc");
}

TEST(Attribute, CopiesEverySetting) {
  hsGAttribute attr(hsGAttribute::kFrame), copy;
  attr.SetColor(1, 2, 3, 4);
  attr.SetColorIndex(5);
  attr.SetFrameSize(6);
  attr.SetMiterLimit(7);
  attr.SetMinWidth(8);
  attr.SetCapType(hsGAttribute::kRoundCap);
  attr.SetJoinType(hsGAttribute::kBevelJoin);
  attr.SetTextSize(9);
  attr.SetTextEncoding(hsGAttribute::kUTF16);
  attr.SetFontID(10);
  hsGTextFace face, faceOut;
  face.fSkewX = 11;
  attr.SetTextFace(&face);
  hsGTextSpacing spacing, spacingOut;
  spacing.fCharExtra = 12;
  attr.SetTextSpacing(&spacing);
  attr.SetXferMode(hsMake<hsGSrcMode>().get());
  copy.CopyFrom(attr);
  EXPECT_EQ(
      std::tuple(copy.Flags(), copy.Color().fB, copy.ColorIndex(), copy.FrameSize(), copy.MiterLimit(), copy.MinWidth(),
                 copy.GetCapJoinStyle(), copy.TextSize(), copy.Encoding(), copy.FontID(), copy.XferMode()),
      std::tuple(attr.Flags(), 4, 5, 6, 7, 8, 6u, 9, hsGAttribute::kUTF16, 10u, attr.XferMode()));
  EXPECT_TRUE(copy.GetTextFace(&faceOut) && faceOut == face);
  EXPECT_TRUE(copy.GetTextSpacing(&spacingOut) && spacingOut == spacing);
}

// Adds the path to what is there.
struct AddingEffect : hsGPathEffect {
  bool FilterPath(const hsMatrix*, hsScalar*, const hsPath* src, hsPath* dst) const override {
    dst->AddPath(*src);
    return true;
  }
};

TEST(Attribute, ApplierBeginsEachPathAnew) {
  const hsPath path = PathOf("M 0 0 L 100 0"), other = PathOf("M 3 4 L 5 6");
  hsGAttribute attr, bare;
  attr.SetPathEffect(hsMake<AddingEffect>().get());
  hsGPathEffectApplier applier(nullptr, &attr);
  applier.Apply(path);
  applier.Apply(other);
  EXPECT_TRUE(applier.Path() == other);
  EXPECT_EQ(AssertOf([&] { hsGPathEffectApplier none(nullptr, &bare); }), "nil effect");
}

TEST(Shader, LocalMatrixTravels) {
  PlainShader shader(24);
  hsMeta meta, writer;
  shader.Describe(&meta, &writer);
  EXPECT_EQ(meta.CountEntries(), 2);
  EXPECT_EQ(writer.GetScalars("transform", nullptr), 0);  // the identity isn't worth writing
  hsMatrix matrix;
  matrix.SetSkew(1, 2, 3, 4);
  matrix.PostTranslate(5, 6);
  shader.SetLocalMatrix(&matrix);
  hsMeta again;
  shader.Describe(nullptr, &again);
  EXPECT_EQ(PlainShader(again).LocalMatrix(), matrix);
  EXPECT_EQ(PlainShader(again).StdSize(), 24);

  char bytes[40];
  ASSERT_EQ(shader.Flatten(nullptr), 40);
  shader.Flatten(bytes);
  const void* cursor = bytes;
  const PlainShader back(&cursor, 12);
  EXPECT_EQ(cursor, bytes + 40);
  EXPECT_EQ(back.LocalMatrix(), matrix);
  EXPECT_EQ(back.Scale(), kFixed1 / 2);
  shader.SetLocalMatrix(nullptr);
  EXPECT_EQ(shader.LocalMatrix(), hsMatrix());
}

}  // namespace
