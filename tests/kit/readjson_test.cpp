#include "kit/readjson.h"

#include <gtest/gtest.h>

#include "kit/errors.h"

namespace {

TEST(ReadJson, ValuesOfAllKinds) {
  const JsonValue all = readJson(
      " {\"a\" : [1, -0.5e1 ,1E+2,0],\"t\":true,\"f\":false,\"n\":null,\n"
      "\"s\":\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u0041\\u00e4\\u20AC\\ud83d\\uDE00\u00e4\",\"\":{},\"t\":[]} ");
  std::vector<double> numbers;
  for (const JsonValue& value : all.find("a")->array) numbers.push_back(value.number);
  EXPECT_EQ(numbers, (std::vector<double>{1, -5, 100, 0}));
  EXPECT_FALSE(all.find("f")->isTrue);
  EXPECT_EQ(all.find("n")->kind, JsonValue::Kind::null);
  EXPECT_EQ(all.find("s")->text, "\"\\/\b\f\n\r\tA\u00e4\u20AC\U0001F600\u00e4");
  EXPECT_EQ(all.find("")->kind, JsonValue::Kind::object);
  EXPECT_EQ(all.find("t")->kind, JsonValue::Kind::array) << "the last one counts";
  EXPECT_EQ(all.object.front().value.array.size(), 4u);
  EXPECT_EQ(all.find("x"), nullptr);
}

TEST(ReadJson, WhatIsNoJsonIsRefused) {
  for (const char* text : {"",
                           " ",
                           "nul",
                           "truer",
                           "01",
                           "1.",
                           ".5",
                           "+1",
                           "-",
                           "1e",
                           "1e999",
                           "NaN",
                           "'a'",
                           "\"a",
                           "\"a\nb\"",
                           "\"\\x\"",
                           "\"\\u12g4\"",
                           "\"\\u+123\"",
                           "\"\\ud800\"",
                           "\"\\udc00\\ud800\"",
                           "\"\\ud800\\u0041\"",
                           "\"\\",
                           "\"\\u12",
                           "[",
                           "[1",
                           "[1,",
                           "[1,]",
                           "[,1]",
                           "[1 2]",
                           "{",
                           "{\"a\"",
                           "{\"a\":",
                           "{\"a\":1,}",
                           "{a:1}",
                           "{1:1}",
                           "1 2",
                           "]",
                           "\"\xFF\"",
                           "\"\xED\xA0\x80\"",
                           "// x\n1"})
    EXPECT_THROW(readJson(text), KitError) << text;
  EXPECT_THROW(readJson(std::string_view("1\0", 2)), KitError);
  const auto nested = [](size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_NO_THROW(readJson(nested(kMostJsonDepth)));
  EXPECT_THROW(readJson(nested(kMostJsonDepth + 1)), KitError);
}

}  // namespace
