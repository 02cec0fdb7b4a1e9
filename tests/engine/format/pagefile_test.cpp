#include "engine/format/pagefile.h"

#include <algorithm>
#include <functional>

#include "gfx/foundation/hsascii.h"
#include "support/pagefixture.h"

namespace {

// Bytes of a page with a root at 16, put together by hand.
class PageFileTest : public PageTest {
 protected:
  PageFileTest() { bytes = {'K', 'P', 'G', 'F', 0, 0, 2, 0, 0, 0, 0, 1, 0, 0, 0, 16}; }

  void put32(uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(uint8_t(v >> shift));
  }
  void attribute(uint8_t tag, uint32_t name, uint32_t value) {
    put32(uint32_t(tag) << 24 | name);
    put32(value);
  }
  std::string logged() { return std::exchange(desktop.log, {}); }

  std::vector<uint8_t> bytes;
};

TEST_F(PageFileTest, TheHeaderIsCheckedBeforeTheVersion) {
  EXPECT_EQ(pageCheck(bytes.data(), 15), 0);
  EXPECT_EQ(logged(), "Not a page file\n");
  EXPECT_EQ(pageCheck(bytes.data(), 16), 1);
  bytes[7] = 1;
  EXPECT_EQ(pageCheck(bytes.data(), 16), 0);
  EXPECT_EQ(logged(), "Outdated page file: expected version 2.00, got version 2.01\n");
}

TEST_F(PageFileTest, EachReaderTakesItsTagsAndNamesTheOthers) {
  put32(0x00010002);
  put32(0x00030004);
  put32(8);
  const uint32_t strings = uint32_t(bytes.size()) + 8 * 8;
  for (uint8_t tag = 0; tag < 8; ++tag) attribute(tag, strings, strings + 2);
  for (char c : std::string("a\0 -12x\0", 8)) bytes.push_back(uint8_t(c));
  const PageData page(bytes);
  const PageObject root = pageRoot(page);
  EXPECT_EQ(root.height(), 4);

  int32_t number = 0;
  uint32_t color;
  bool flag = false;
  const char* text;
  PageObject object;
  PageTable table;
  PageScript script;
  const std::tuple<const char*, std::vector<uint32_t>, std::function<int(const PageAttribute&)>> readers[] = {
      {"Expecting an integer", {1, 2, 4}, [&](const PageAttribute& a) { return attrInt(a, &number); }},
      {"Expecting boolean", {1, 2, 4}, [&](const PageAttribute& a) { return attrBool(a, &flag); }},
      {"Expecting a color", {1, 3}, [&](const PageAttribute& a) { return attrColor(a, &color); }},
      {"Expecting string", {4}, [&](const PageAttribute& a) { return attrString(a, &text); }},
      {"Expecting script", {5}, [&](const PageAttribute& a) { return attrScript(a, &script); }},
      {"Eexpecting object", {6}, [&](const PageAttribute& a) { return attrObject(a, &object); }},
      {"Expecting table", {7}, [&](const PageAttribute& a) { return attrTable(a, &table); }},
  };
  for (const auto& [complaint, tags, read] : readers)
    for (uint32_t tag = 0; tag < 8; ++tag) {
      const bool takes = std::count(tags.begin(), tags.end(), tag) > 0;
      EXPECT_EQ(read(pageAttribute(root, tag)), takes && tag != 5) << complaint << tag;  // the file ends in that script
      EXPECT_EQ(logged(), takes ? "" : std::string(complaint) + ", got type 0" + std::to_string(tag) + "\n");
    }

  attrInt(pageAttribute(root, 4), &number);
  EXPECT_EQ(number, -12);  // leading space, sign, digits as far as they go
  attrString(pageAttribute(root, 4), &text);
  EXPECT_STREQ(text, " -12x");
  const std::pair<uint32_t, bool> booleans[] = {{1, true}, {2, true}, {4, false}};  // any number but 0; no "true"
  for (const auto& [tag, expected] : booleans) {
    attrBool(pageAttribute(root, tag), &flag);
    EXPECT_EQ(flag, expected) << tag;
  }
}

TEST_F(PageFileTest, WhatPointsOutsideIsAbsentWithoutAWord) {
  put32(0x00010002);
  put32(0x00030004);
  put32(1000);  // more attributes than the file holds
  const uint32_t name = uint32_t(bytes.size()) + 7 * 8;
  for (uint8_t tag : {4, 6, 7, 5}) attribute(tag, name, 0xFFFFFFF0);
  attribute(4, name, name + 2);  // a text that nothing ends
  attribute(5, name, 0);         // a script whose length, here the magic, goes beyond the file
  attribute(6, name, 0);
  for (char c : std::string("n\0endless", 9)) bytes.push_back(uint8_t(c));
  const PageData page(bytes);
  const PageObject root = pageRoot(page);
  EXPECT_EQ(root.attributeCount(), 8u);  // the eighth is made of the letters

  const char* text = nullptr;
  PageObject object;
  PageTable table;
  PageScript script;
  EXPECT_EQ(attrString(pageAttribute(root, 0), &text), 0);
  EXPECT_EQ(attrObject(pageAttribute(root, 1), &object), 0);
  EXPECT_EQ(attrTable(pageAttribute(root, 2), &table), 0);
  EXPECT_EQ(attrScript(pageAttribute(root, 3), &script), 0);
  EXPECT_EQ(attrString(pageAttribute(root, 4), &text), 0);
  EXPECT_EQ(attrScript(pageAttribute(root, 5), &script), 0);
  EXPECT_EQ(attrObject(pageAttribute(root, 6), &object), 1);  // none at all is an answer
  EXPECT_FALSE(object);
  EXPECT_EQ(logged(), "");
}

TEST_F(PageFileTest, ARecordCutByTheEndHasNoRectangle) {
  put32(0x00010002);
  put32(0x00030004);
  const PageData cut(bytes);
  EXPECT_EQ(pageRoot(cut).width(), 0);
  EXPECT_EQ(pageRoot(cut).attributeCount(), 0u);
  bytes.resize(16);
  EXPECT_FALSE(pageRoot(PageData(bytes)));
}

TEST(Ascii, IntegersSaturateAt64BitsAndKeepTheLow32) {
  const std::pair<const char*, int> cases[] = {{" \t+42 ", 42},
                                               {"4294967297", 1},
                                               {"9223372036854775807", -1},
                                               {"9223372036854775808", -1},
                                               {"-9223372036854775808", 0},
                                               {"-99999999999999999999", 0},
                                               {"- 1", 0}};
  for (const auto& [text, number] : cases) EXPECT_EQ(hsAsciiToInt(text), number) << text;
}

}  // namespace
