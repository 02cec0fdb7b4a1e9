#include "kit/wildcards.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#ifndef _WIN32
#include <fnmatch.h>
#endif

namespace {

TEST(Wildcards, AreThoseOfShells) {
  for (const auto& [pattern, text] : {std::pair("*.png", "a.png"),
                                      {"a*b*c", "a/x.b-bc"},
                                      {"[a-c]?", "b "},
                                      {"\\*", "*"},
                                      {"[!x]", "y"},
                                      {"[]]", "]"},
                                      {"[", "["},
                                      {"", ""},
                                      {"**", ""},
                                      {"*[x", "a[x"}})
    EXPECT_TRUE(matchesWildcards(pattern, text)) << pattern << " " << text;
  for (const auto& [pattern, text] : {std::pair("*.png", "a.pn"),
                                      {"a*b*c", "abcd"},
                                      {"[a-c]?", "b"},
                                      {"\\*", "x"},
                                      {"[!x]", "x"},
                                      {"", "a"},
                                      {"?", ""},
                                      {"a", "A"}})
    EXPECT_FALSE(matchesWildcards(pattern, text)) << pattern << " " << text;
}

#ifndef _WIN32
TEST(Wildcards, AgreeWithTheSystems) {
  std::mt19937 random(7);
  const auto word = [&](std::string_view letters, size_t most) {
    std::string made(random() % most, ' ');
    for (char& c : made) c = letters[random() % letters.size()];
    return made;
  };
  int matches = 0;
  for (int i = 0; i < 200000; ++i) {
    const std::string pattern = word("ab*?[-!", 9) + word("]ab*", 4), text = word("ab]-", 7);
    const bool expected = fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
    ASSERT_EQ(matchesWildcards(pattern, text), expected) << pattern << " " << text;
    matches += expected;
  }
  EXPECT_GT(matches, 1000);
}
#endif

}  // namespace
