// String table files, good and bad, and the class StringTable.
#include "engine/scriptbindings/stringtable.h"

#include "pages/scriptfixture.h"

namespace {

void put(std::string& bytes, size_t at, uint32_t n) {
  for (int i = 0; i < 4; ++i) bytes[at + size_t(i)] = char(n >> (24 - 8 * i));
}

// A table of these texts; the count is little-endian, all else big-endian.
std::string tableOf(const std::vector<std::string>& texts) {
  std::string bytes(32 + 12 * texts.size(), '\0');
  bytes[20] = char(texts.size());
  for (size_t i = 0; i < texts.size(); ++i) {
    put(bytes, 32 + 12 * i + 4, uint32_t(texts[i].size()));
    put(bytes, 32 + 12 * i + 8, uint32_t(bytes.size()));
    bytes += texts[i];
  }
  return bytes;
}

StringTableFile fileOf(const std::string& bytes) { return StringTableFile({bytes.begin(), bytes.end()}); }

TEST(StringTableFile, IndicesCountFromOneAndTextsEndAtEightyBytes) {
  const StringTableFile file = fileOf(tableOf({"one", "", std::string(100, 'x')}));
  EXPECT_EQ(file.string(1), "one");
  EXPECT_EQ(file.string(2), "");
  EXPECT_EQ(file.string(3), std::string(80, 'x'));
  for (int32_t index : {0, -1, 4, INT32_MIN, INT32_MAX}) EXPECT_EQ(file.string(index), "") << index;
}

TEST(StringTableFile, WhatLiesOutsideIsNotThere) {
  std::string bytes = tableOf({"text"});
  EXPECT_EQ(fileOf(bytes.substr(0, bytes.size() - 1)).string(1), "");
  EXPECT_EQ(fileOf(bytes.substr(0, 40)).string(1), "");
  for (size_t size : {0u, 20u, 23u, 24u}) EXPECT_EQ(fileOf(bytes.substr(0, size)).string(1), "") << size;
  for (uint32_t bad : {0xFFFFFFFFu, 0xFFFFFFFCu, 49u}) {
    std::string moved = bytes;
    put(moved, 40, bad);
    EXPECT_EQ(fileOf(moved).string(1), "") << bad;
    std::string longer = bytes;
    put(longer, 36, bad);
    EXPECT_EQ(fileOf(longer).string(1), "") << bad;
  }
  bytes.replace(20, 4, 4, '\xFF');
  EXPECT_EQ(fileOf(bytes).string(2), "");
  EXPECT_EQ(fileOf(bytes).string(INT32_MAX), "");
}

class StringTableTest : public ScriptTest {};
EVERY_COLLECTION(StringTableTest);

TEST_P(StringTableTest, OpensReadsAndCloses) {
  writeText("table.str", tableOf({"one", "", "three"}));
  ASSERT_TRUE(loadEmpty());
  talk({{"new StringTable(\"none.str\");", "Can't open 'none.str'\n--> nil\n"},
        {"KOVA.s = new StringTable(\"table.str\");", "--> <..."},
        {"KOVA.s.String(3);", "--> \"three\"\n"},
        {"KOVA.s.String(2);", kNil},
        {"KOVA.s.String(4);", kNil},
        {"KOVA.s.Close();", kTrue},
        {"KOVA.s.String(1);", kNil},
        {"KOVA.s.Close();", kNil},
        {"KOVA.s.initialize(\"table.str\");", kAnything},
        {"KOVA.s.String(1);", "--> \"one\"\n"}});
}

}  // namespace
