#include "host/console.h"

#include <gtest/gtest.h>

#include "host/edittext.h"

namespace {

class ConsoleTest : public testing::Test {
 protected:
  void type(std::string_view text) { edit.replaceSelection(text); }
  std::string enter() {
    std::string evaluated = "(nothing)";
    console.enter([this] { edit.replaceSelection("\r\n"); }, [&](std::string_view text) { evaluated = text; });
    return evaluated;
  }

  EditText edit;
  MessageConsole console{edit};
};

TEST_F(ConsoleTest, TextShowsWhenALineEndsOrTheBufferIsFoundFull) {
  console.write("half");
  EXPECT_EQ(edit.text(), "");
  console.write(" a line\r\n");  // the CR is kept, and another goes before the LF
  EXPECT_EQ(edit.text(), "half a line\r\r\n");

  edit.select({0, -1});
  edit.replaceSelection("");
  console.write(std::string(1024, 'x'));
  EXPECT_EQ(edit.textLength(), 0);
  console.consolePutChar('y');
  EXPECT_EQ(edit.textLength(), 1024);
}

TEST_F(ConsoleTest, OutputLandsAtTheCaretAndReplacesASelection) {
  type("ab cd");
  edit.select({2, 2});
  console.write("!\n");
  EXPECT_EQ(edit.text(), "ab!\r\n cd");
  edit.select({0, 3});
  console.write("new\n");
  EXPECT_EQ(edit.text(), "new\r\n\r\n cd");
}

TEST_F(ConsoleTest, TrimsToTheLineOfByte2000OnceTheLastLineStartsBeyond20000) {
  const std::string line = std::string(98, 'a') + "\r\n";  // 100 bytes
  for (int i = 0; i < 200; ++i) type(line);                // the last line starts at 20000: not beyond
  console.write("x\n");
  EXPECT_EQ(edit.textLength(), 20003);
  console.write("y\n");  // the last line started at 20003: byte 2000 begins line 20, so lines 0 to 19 go
  EXPECT_EQ(edit.textLength(), 20003 - 2000 + 3);
  EXPECT_TRUE(edit.text().ends_with("x\r\ny\r\n"));
}

TEST_F(ConsoleTest, ASelectionThatBeganInTheTrimmedPartBecomesEverything) {
  for (const int end : {12, 15000}) {
    for (int i = 0; i < 202; ++i) type(std::string(98, 'a') + "\r\n");
    edit.select({10, end});
    console.write("only this is left\n");
    EXPECT_EQ(edit.text(), "only this is left\r\n") << end;
  }
}

TEST_F(ConsoleTest, EnterEvaluatesTheCaretsLineOrTheSelection) {
  type("first\r\nsecond");
  edit.select({2, 2});
  EXPECT_EQ(enter(), "first");
  EXPECT_EQ(edit.text(), "first\r\n\r\nsecond");  // the break goes after the line
  EXPECT_EQ(enter(), "(nothing)");                // an empty line still breaks
  EXPECT_EQ(edit.text(), "first\r\n\r\n\r\nsecond");

  edit.select({1, 4});
  EXPECT_EQ(enter(), "irs");
  EXPECT_EQ(edit.selection(), (EditSelection{6, 6}));
}

TEST(EditText, LinesEndAtCrLfOnly) {
  EditText edit;
  edit.replaceSelection("a\rb\nc\r\nd");
  EXPECT_EQ(edit.lineCount(), 2);
  EXPECT_EQ(edit.lineIndex(1), 7);
  EXPECT_EQ(edit.lineIndex(2), -1);
  EXPECT_EQ(edit.lineLength(0), 5);
  EXPECT_EQ(edit.lineFromChar(6), 0);
  EXPECT_EQ(edit.lineFromChar(7), 1);
}

}  // namespace
