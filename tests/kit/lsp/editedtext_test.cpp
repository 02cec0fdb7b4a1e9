// Places of a text as editors count them, and edits by them.
#include "kit/lsp/editedtext.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "kit/lsp/fileuri.h"

namespace {

TEST(EditedText, CountsUnitsOfUtf16) {
  const EditedText text("aü🎬b\r\nc\rd\n");
  EXPECT_EQ(text.lineCount(), 4u);
  EXPECT_EQ(text.positionOf(7), (TextPosition{0, 4}));  // after the letter of two units
  EXPECT_EQ(text.offsetOf({0, 4}), 7u);
  EXPECT_EQ(text.offsetOf({0, 3}), 7u);  // inside of it
  EXPECT_EQ(text.offsetOf({0, 99}), 8u);
  EXPECT_EQ(text.line(2), "d");
  EXPECT_EQ(text.positionOf(9), (TextPosition{0, 5}));  // between \r and \n
  EXPECT_EQ(text.offsetOf({9, 0}), text.text().size());
  EXPECT_EQ(text.offsetOf({-1, 3}), 0u);
}

// A slow model: UTF-32 letters, a line at a time.
std::string edited(const std::u32string& text, size_t begin, size_t end, const std::u32string& with) {
  const std::u32string all = text.substr(0, begin) + with + text.substr(end);
  std::string out;
  for (const char32_t c : all) out += c == U'ü' ? "ü" : c == U'🎬' ? "🎬" : std::string(1, char(c));
  return out;
}

TextPosition placeOf(const std::u32string& text, size_t at) {
  TextPosition place;
  for (size_t i = 0; i < at; ++i) {
    place.character += text[i] == U'🎬' ? 2 : 1;
    if (text[i] == U'\n') place = {place.line + 1, 0};
  }
  return place;
}

TEST(EditedText, TakesEditsAtAnyPlace) {
  std::mt19937 random(5);
  const std::u32string letters = U"ab\nü🎬";
  const auto pick = [&](size_t most) {
    std::u32string text;
    for (size_t n = random() % (most + 1); n > 0; --n) text += letters[random() % letters.size()];
    return text;
  };
  for (int i = 0; i < 2000; ++i) {
    const std::u32string before = pick(30), with = pick(5);
    const size_t begin = random() % (before.size() + 1), end = begin + random() % (before.size() - begin + 1);
    EditedText text(edited(before, 0, 0, U""));
    text.replace({placeOf(before, begin), placeOf(before, end)}, edited(with, 0, 0, U""));
    ASSERT_EQ(text.text(), edited(before, begin, end, with));
  }
}

TEST(FileUri, IsTheFilesFullName) {
  const std::string drive = std::filesystem::current_path().root_name().string();  // empty but on Windows
  EXPECT_EQ(pathOfUri("file:///home/anna/men%C3%BC%201.yaml"), drive + "/home/anna/menü 1.yaml");
  EXPECT_EQ(uriOfPath("/home/anna/menü 1.yaml"), "file:///home/anna/men%C3%BC%201.yaml");
  EXPECT_EQ(pathOfUri("file:///a/../b%"), drive + "/b%");
  EXPECT_EQ(pathOfUri("untitled:Untitled-1"), "untitled:Untitled-1");
  EXPECT_EQ(uriOfPath("untitled:Untitled-1"), "untitled:Untitled-1");
#ifdef _WIN32
  EXPECT_EQ(uriOfPath("c:/anna/menü.yaml"), "file:///c%3A/anna/men%C3%BC.yaml");
  EXPECT_EQ(pathOfUri("file:///c%3A/anna/a.yaml"), "c:/anna/a.yaml");
  EXPECT_EQ(pathOfUri(uriOfPath(fullPath("a.yaml"))), fullPath("a.yaml"));
#endif
}

}  // namespace
