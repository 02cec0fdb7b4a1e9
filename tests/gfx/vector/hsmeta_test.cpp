#include "gfx/vector/hsmeta.h"

#include <gtest/gtest.h>

#include "gfx/foundation/hsflattenable.h"
#include "gfx/halt.h"
#include "gfx/vector/pathtext.h"

namespace {

hsMeta Sample(const char* path) {
  const hsScalar scalars[] = {1, -2, 3};
  const hsPath shape = PathOf(path);
  hsMeta inner, meta;
  inner.AddPath("shape", &shape);
  meta.AddInt8("byte", -5);
  meta.AddInt32("word", 1 << 20);
  meta.AddScalars("numbers", 3, scalars);
  meta.AddString("text", "abc");
  meta.AddMeta("inner", &inner);
  meta.AddInt8("byte", 6);  // never seen
  return meta;
}

TEST(Meta, FindsByNameAndTypeInOrder) {
  const hsMeta meta = Sample("M 0 0 L 1 1");
  int8_t byte = 0;
  int16_t half = 0;
  int32_t word = 0;
  EXPECT_TRUE(meta.GetInt8("byte", &byte));
  EXPECT_EQ(byte, -5);
  EXPECT_TRUE(meta.GetInt32("word", &word));
  EXPECT_EQ(word, 1 << 20);
  EXPECT_FALSE(meta.GetInt16("word", &half));
  EXPECT_FALSE(meta.GetInt8("numbers", &byte));
  hsScalar scalars[3] = {};
  EXPECT_EQ(meta.GetScalars("numbers", scalars), 3);
  EXPECT_EQ(scalars[1], -2);
  EXPECT_EQ(meta.GetScalars("text", nullptr), 0);
  char text[4];
  EXPECT_EQ(meta.GetString("text", text), 3);
  EXPECT_STREQ(text, "abc");
  ASSERT_NE(meta.GetMeta("inner"), nullptr);
  EXPECT_EQ(TextOf(*meta.GetMeta("inner")->GetPath("shape")), "M 0 0 L 1 1");
  EXPECT_EQ(meta.GetPath("inner"), nullptr);
}

TEST(Meta, EqualityAndCopiesGoAllTheWayDown) {
  hsMeta a = Sample("M 0 0 L 1 1"), copy = a;
  EXPECT_TRUE(a == copy);
  EXPECT_NE(a.GetMeta("inner"), copy.GetMeta("inner"));
  EXPECT_FALSE(a == Sample("M 0 0 L 1 2"));
  copy.AddInt8("more", 1);
  EXPECT_FALSE(a == copy);
  a = copy;
  EXPECT_TRUE(a == copy);
  a.AddMeta("self", &a);
  EXPECT_EQ(a.GetMeta("self")->CountEntries(), copy.CountEntries());
}

struct Sized : hsGSizedFlattenable {
  using hsGSizedFlattenable::hsGSizedFlattenable;
};

TEST(SizedFlattenable, ScalesByTheSizeItIsRebuiltFor) {
  const Sized effect(12);
  char buffer[4];
  ASSERT_EQ(effect.Flatten(buffer), 4);
  const std::pair<int32_t, hsFixed> cases[] = {{24, 2 * kFixed1}, {9, kFixed1 * 3 / 4}, {0, kFixed1}, {-5, kFixed1}};
  for (const auto& [size, scale] : cases) {
    const void* cursor = buffer;
    const Sized rebuilt(&cursor, size);
    EXPECT_EQ(cursor, buffer + 4);
    EXPECT_EQ(rebuilt.StdSize(), 12);
    EXPECT_EQ(rebuilt.Scale(), scale);
  }
  EXPECT_EQ(AssertOf([] { Sized(static_cast<const void**>(nullptr), 1); }), "need storage buffer");
  Sized(-1).Flatten(buffer);
  const void* cursor = buffer;
  EXPECT_EQ(AssertOf([&] { Sized(&cursor, 1); }), "bad stdsize");
}

TEST(SizedFlattenable, DescribesItsSizeOnlyWhenItHasOne) {
  hsMeta meta, writer, empty;
  Sized(12).Describe(&meta, &writer);
  Sized(0).Describe(nullptr, &empty);
  EXPECT_EQ(Sized(writer).StdSize(), 12);
  EXPECT_EQ(Sized(empty).StdSize(), 0);
  EXPECT_EQ(meta.CountEntries(), 1);
  EXPECT_EQ(empty.CountEntries(), 0);
  hsMeta negative;
  negative.AddBounded("stdSize", -3, 0, INT32_MAX);
  EXPECT_EQ(Sized(negative).StdSize(), 0);
}

}  // namespace
