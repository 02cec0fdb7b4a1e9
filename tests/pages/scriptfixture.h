// Pages with scripts, each test run twice: as the player runs it, and with a collection at every allocation, which
// moves every object whenever it can.
#pragma once

#include "bob/bob.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "support/blockfont.h"
#include "support/pagefixture.h"

class ScriptTest : public PageTest, public testing::WithParamInterface<bool> {
 protected:
  ScriptTest() {
    if (!GetParam()) return;
    bobCollectAlways(scriptInterp());
    desktop.log.clear();
  }

  // What the console answers to the line, without what drawing afterwards logs.
  std::string say(const std::string& line) {
    desktop.log.clear();
    desktop.typeLine(line);
    const std::string answer = heard();
    desktop.settle();
    desktop.log.clear();
    return answer;
  }

  // Lines and what the console answers to each.
  void talk(const std::vector<std::pair<const char*, const char*>>& lines) {
    for (const auto& [line, answer] : lines) EXPECT_EQ(say(line), answer) << line;
  }

  // What it has shown since the last look.
  std::string heard() {
    const std::string text = log();
    desktop.log.clear();
    return text;
  }
};

// The same with a font of blocks in the page's folder.
class ScriptFontTest : public ScriptTest {
 protected:
  ScriptFontTest() { WriteFile("blocks.ttf", BlockFontFile()); }

  // Styles and widgets as a source lists them.
  void loadStyled(const std::string& styles, const std::string& children = "") {
    ASSERT_TRUE(load("flags: 8bit\npage: {width: 720, height: 480, type: group, textStyles: [" + styles +
                     "], children: [" + children + "]}"));
  }
};

#define EVERY_COLLECTION(Suite)                                 \
  INSTANTIATE_TEST_SUITE_P(Collections, Suite, testing::Bool(), \
                           [](const auto& info) { return info.param ? "AtEveryAllocation" : "WhenFull"; })
