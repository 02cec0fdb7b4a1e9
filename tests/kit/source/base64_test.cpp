#include "kit/source/base64.h"

#include <gtest/gtest.h>

namespace {

TEST(Base64, EncodesAndDecodesEveryPadding) {
  // The examples of RFC 4648.
  const std::pair<const char*, const char*> cases[] = {{"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
                                                       {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}};
  for (const auto& [plain, coded] : cases) {
    EXPECT_EQ(base64Encode(plain), coded);
    EXPECT_EQ(base64Decode(coded), plain);
  }
  EXPECT_EQ(base64Decode("Zm\n 9v"), "foo");
}

TEST(Base64, RefusesWhatIsMalformed) {
  for (const char* text : {"Zg", "Zg=", "Z===", "Zg=a", "Zg==Zg", "Zm9v!"}) EXPECT_FALSE(base64Decode(text)) << text;
}

}  // namespace
