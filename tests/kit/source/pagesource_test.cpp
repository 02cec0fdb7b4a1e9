#include "kit/source/pagesource.h"
#include "kit/errors.h"
#include "support/pagefixture.h"

namespace {

class SourceTest : public PageTest {
 protected:
  PageTree read(const std::string& source) {
    warnings.clear();
    writeText("p.yaml", source);
    return readPageSource("p.yaml", [this](const KitMessage& warning) { warnings += warning.whole() + "\n"; });
  }
  std::string errorOf(const std::string& source) {
    try {
      read(source);
      return "(none)";
    } catch (const KitError& e) {
      return e.what();
    }
  }
  const PageValue& attribute(const PageTree& page, size_t i = 0) { return page.root.attributes.at(i).value; }
  std::string warnings;
};

TEST_F(SourceTest, AttributesTakeTheTagThatTheirReaderWants) {
  const PageTree page = read(
      "flags: 16bit\n"
      "page: {x: 1, height: 65535, type: text, value: 42, hidden: true, maxLength: 0x10, multiline: yes,\n"
      "       bgColor: white, frameColor: '#FF0000', children: [a, b], onClick: !scriptdata Zm9v}\n");
  EXPECT_EQ(page.flags, 0u);
  EXPECT_EQ(page.root.x, 1);
  EXPECT_EQ(page.root.height, 65535);
  std::string tags;
  for (const PageEntry& entry : page.root.attributes) tags += std::to_string(int(entry.value.tag));
  EXPECT_EQ(tags,
            "444123375"
            "");  // type, value, hidden, maxLength, multiline, bgColor, frameColor, children, onClick
  EXPECT_EQ(attribute(page, 1).bytes, "42");
  EXPECT_EQ(attribute(page, 2).bytes, "true");
  EXPECT_EQ(attribute(page, 3).number, 16u);
  EXPECT_EQ(attribute(page, 5).number, 0xEB808000u);
  EXPECT_EQ(attribute(page, 6).number, 0x51F05B00u);
  EXPECT_EQ(attribute(page, 8).bytes, "foo");
  // A text has no children, so nothing reads them: kept, with a warning.
  EXPECT_EQ(warnings, "p.yaml:3: warning: nothing reads 'children'\n");
}

TEST_F(SourceTest, WhatNothingReadsIsTaggedByItsLooksAndATagOverridesAll) {
  const PageTree page = read(
      "page: {a: 7, b: true, c: '7', d: words, e: {x: 3, z: 1}, f: [1, {y: 2}], name: !int -2, timeout: !string 9,\n"
      "       bgColor: !bool true, g: !color 5, h: !object , i: !table }\n");
  std::string tags;
  for (const PageEntry& entry : page.root.attributes) tags += std::to_string(int(entry.value.tag));
  EXPECT_EQ(tags, "124467142367");
  EXPECT_NE(warnings.find("nothing reads 'e'"), std::string::npos);
  EXPECT_EQ(warnings.find("'z'"), std::string::npos);  // said of the whole object already
  EXPECT_EQ(attribute(page, 4).object.at(0).x, 3);
  EXPECT_EQ(attribute(page, 5).table.at(0).bytes, "1");
  EXPECT_EQ(attribute(page, 5).table.at(1).object.at(0).y, 2);
  EXPECT_EQ(attribute(page, 6).number, 0xFFFFFFFEu);
  EXPECT_TRUE(attribute(page, 10).object.empty());
}

TEST_F(SourceTest, ErrorsNameFileAndLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"page:\n  x: 65536\n", "p.yaml:2: a position or size goes from 0 to 65535"},
      {"page:\n  x: -1\n", "p.yaml:2: a position or size goes from 0 to 65535"},
      {"page:\n  name: a\n  up: b\n  name: c\n", "p.yaml:4: 'name' is given twice"},
      {"page:\n  timeout: soon\n", "p.yaml:2: 'soon' is no whole number of 32 bits"},
      {"page:\n  timeout: 4294967296\n", "p.yaml:2: '4294967296' is no whole number of 32 bits"},
      {"page:\n  tileBackground: on\n", "p.yaml:2: 'on' is neither true nor false"},
      {"flags: 8bit\npage:\n  bgColor: '#102030'\n",
       "p.yaml:3: \"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table"},
      {"page:\n  bgColor: '#12345'\n", "p.yaml:2: '#12345' is no colour of the form #RRGGBB"},
      {"page:\n  name: !strnig a\n", "p.yaml:2: unknown tag !strnig"},
      {"page:\n  x: !color 5\n", "p.yaml:2: no tag can be used here: !color"},
      {"page:\n  other:\n    - !int 5\n", "p.yaml:3: no tag can be used here: !int"},
      {"page:\n  name: [a]\n", "p.yaml:2: expecting text"},
      {"page:\n  type: group\n  children: 5\n", "p.yaml:3: expecting a list of objects"},
      {"page:\n  type: group\n  children:\n    - 5\n", "p.yaml:4: an entry of this list must be a map"},
      {"page:\n  onClick: !scriptdata '%%%'\n", "p.yaml:2: this is no base64"},
      {"page:\n  onClick: x =;\n", "p.yaml:2: Syntax error - Expecting a primary expression"},
      {"page:\n  onClick: |\n    x = 1;\n    y =;\n", "p.yaml:4: Syntax error - Expecting a primary expression"},
      {"page:\n  other: !script |\n    x = 1;\n\n    y =;\n",
       "p.yaml:5: Syntax error - Expecting a primary expression"},
      {"page:\n  onClick: true = 1;\n", "p.yaml:2: Attempt to store into a constant"},
      {"page:\n  scripts: [a.bobo,\n   b.bob]\n", "p.yaml:3: can't read 'b.bob'"},
      {"flags: 24bit\npage: {}\n", "p.yaml:1: 'flags' is 8bit or 16bit"},
      {"pages: {}\n", "p.yaml:1: unknown key 'pages'; a page source has 'flags' and 'page'"},
      {"flags: 8bit\n", "p.yaml:1: there is no 'page'"},
      {"page: [\n", "p.yaml:2: end of sequence flow not found"},
  };
  for (const auto& [source, message] : cases) EXPECT_EQ(errorOf(source), message) << source;
}

}  // namespace
