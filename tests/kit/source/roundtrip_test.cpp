// Whatever build makes, dump prints so that it builds back to the same bytes.
#include <random>

#include "engine/format/pagefile.h"
#include "kit/files.h"
#include "kit/source/pagedump.h"
#include "kit/source/pagesource.h"
#include "kit/source/pagewriter.h"
#include "support/pagefixture.h"

namespace {

class RoundTripTest : public PageTest {
 protected:
  void expectRoundTrip(const PageTree& page) {
    const std::vector<uint8_t> bytes = writePage(page);
    const std::string source = dumpPage("p.kpg", bytes);
    writeText("p.yaml", source);
    EXPECT_EQ(writePage(readPageSource("p.yaml")), bytes) << source;
  }
};

class RandomPages {
 public:
  explicit RandomPages(unsigned seed) : random(seed) {}

  PageTree page() {
    PageTree page;
    page.flags = pick(3);
    page.root = node(3);
    return page;
  }

 private:
  uint32_t pick(uint32_t n) { return uint32_t(random() % n); }

  PageNode node(int depth) {
    static const char* const names[] = {
        "name",       "bgColor", "timeout", "hidden",   "tileBackground", "children", "onClick", "type",
        "textStyles", "scripts", "x y",     "1st",      "true",           "start",    "value",   "types",
        "align",      "repeat",  "include", "template", "layout",         "links",    "style",   "with"};
    PageNode node;
    node.x = uint16_t(pick(3) * 400);
    node.width = uint16_t(random());
    std::vector<std::string> pool(std::begin(names), std::end(names));
    std::shuffle(pool.begin(), pool.end(), random);
    for (size_t i = pick(6); i > 0; --i) node.attributes.push_back({pool[i], value(depth)});
    return node;
  }

  PageValue value(int depth) {
    static const char* const texts[] = {"",
                                        "group",
                                        "textContainer",
                                        "plain",
                                        "two words",
                                        "42",
                                        "true",
                                        "#",
                                        "- a: b",
                                        "a \"quoted\" \\ \t\n\x01 text",
                                        "null",
                                        "~",
                                        "\xC3\xA9",
                                        "!x",
                                        "0x10",
                                        "a.bob",
                                        "$(x) $$(",
                                        "$"};
    PageValue v;
    v.tag = PageTag(1 + pick(depth > 0 ? 7 : 5));
    switch (v.tag) {
      case PageTag::string: v.bytes = texts[pick(std::size(texts))]; break;
      case PageTag::script: v.bytes = std::string(pick(20), char(random())); break;
      case PageTag::object:
        if (pick(4)) v.object.push_back(node(depth - 1));
        break;
      case PageTag::table: fill(v, depth); break;
      default: v.number = pick(2) ? uint32_t(random()) : pick(3);
    }
    return v;
  }

  // Strings or objects, as the reader of a source makes them.
  void fill(PageValue& table, int depth) {
    for (size_t i = pick(4); i > 0; --i) {
      PageValue item = value(0);
      if (pick(2)) {
        item = {};
        item.tag = PageTag::object;
        item.object.push_back(node(depth - 1));
      } else {
        item.tag = PageTag::string;
        // Where the engine reads objects, dump takes a text with control characters for one.
        std::erase_if(item.bytes, [](uint8_t c) { return c < ' '; });
      }
      table.table.push_back(std::move(item));
    }
  }

  std::mt19937 random;
};

TEST_F(RoundTripTest, RandomPagesComeBackByteForByte) {
  RandomPages pages(20);
  for (int i = 0; i < 400; ++i) expectRoundTrip(pages.page());
}

TEST_F(RoundTripTest, APageIsNoLongerThanItMustBe) {
  EXPECT_EQ(writePage(PageTree()).size(), 16u + 12);  // its head and an empty record, on whole words already
  build("p.kpg", "page: {bgColor: 256, frameColor: 255}");
  const std::string source = dumpPage("p.kpg", readFile("p.kpg"));
  EXPECT_NE(source.find("bgColor: 0x00000100\n"), std::string::npos) << source;
  EXPECT_NE(source.find("frameColor: 255\n"), std::string::npos) << source;
}

TEST_F(RoundTripTest, AnyPageCanBeRead) {
  // A root whose only attribute leads to itself, and whose table runs out of the file.
  std::vector<uint8_t> bytes =
      writePage({kPageIs8Bit, {0, 0, 9, 9, {{"o", {PageTag::object, 0, "", {PageNode{}}, {}}}}}});
  const PageData page(bytes);
  const uint32_t root = pageRoot(page).offset;
  std::copy_n(bytes.begin() + 12, 4, bytes.begin() + root + 16);  // the attribute's value: the root again
  const std::string source = dumpPage("p.kpg", bytes);
  EXPECT_NE(source.find("# and so on"), std::string::npos);

  for (size_t size = 16; size < bytes.size(); ++size)
    EXPECT_FALSE(dumpPage("p.kpg", {bytes.begin(), bytes.begin() + long(size)}).empty());
}

TEST_F(RoundTripTest, APageThatIsFarLargerAsSourceIsRefused) {
  // Thirty texts in the root, which are one in the file, and the root in itself.
  PageNode root;
  for (int i = 0; i < 30; ++i)
    root.attributes.push_back({"t" + std::to_string(i), {PageTag::string, 0, std::string(1000, 'x'), {}, {}}});
  root.attributes.push_back({"o", {PageTag::object, 0, "", {PageNode{}}, {}}});
  std::vector<uint8_t> bytes = writePage({kPageIs8Bit, root});
  ASSERT_LT(bytes.size(), 2000u);
  const uint32_t last = pageRoot(PageData(bytes)).offset + 12 + 30 * 8;
  std::copy_n(bytes.begin() + 12, 4, bytes.begin() + last + 4);
  try {
    dumpPage("p.kpg", bytes);
    ADD_FAILURE() << "it was printed";
  } catch (const KitError& e) {
    EXPECT_STREQ(e.what(), "p.kpg: its parts share so much that its source would be larger than 3 megabytes");
  }
}

}  // namespace
