#include "host/keytable.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyTable, ThePadIsAThreeByThreeSquareButForTheComma) {
  struct Case {
    char key;
    uint32_t direction;
  };
  for (const Case& c : {Case{'u', 5}, Case{'I', 1}, Case{'o', 9}, Case{'J', 4}, Case{'l', 8}, Case{'M', 6},
                        Case{',', 2}, Case{'<', 2}, Case{'.', 10}, Case{'>', 10}}) {
    const auto key = remoteKeyForCharacter(c.key);
    ASSERT_TRUE(key) << c.key;
    EXPECT_EQ(key->code, 0x80001u) << c.key;
    EXPECT_EQ(key->data, c.direction) << c.key;
  }
  EXPECT_EQ(remoteKeyForCharacter('K')->code, 0x80002u);
  EXPECT_EQ(remoteKeyForCharacter('\r')->code, 0x80002u);
}

TEST(KeyTable, ArrowsAreKeysAndDigitsCharacters) {
  EXPECT_EQ(remoteKeyForVirtualKey(38)->data, 1u);
  EXPECT_EQ(remoteKeyForVirtualKey(46)->code, 0x80004u);
  EXPECT_FALSE(remoteKeyForVirtualKey('5'));
  EXPECT_EQ(remoteKeyForCharacter('5')->data, 0x80000005u);
  EXPECT_FALSE(remoteKeyForCharacter('%'));  // a left arrow's number, but a character here
  EXPECT_FALSE(remoteKeyForCharacter('\0'));
  for (char c : {'(', '-', '\f', '\x13'}) EXPECT_FALSE(remoteKeyForCharacter(c)) << int(c);  // a bit beside a key
  for (int key : {5, 6, 14}) EXPECT_FALSE(remoteKeyForVirtualKey(key)) << key;
}

}  // namespace
