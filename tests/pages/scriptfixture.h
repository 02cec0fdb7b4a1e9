// Pages with scripts, each test run twice: as the player runs it, and with a collection at every allocation, which
// moves every object whenever it can.
#pragma once

#include "bob/bob.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "support/blockfont.h"
#include "support/pagefixture.h"

class ScriptTest : public PageTest, public testing::WithParamInterface<bool> {
 protected:
  static constexpr const char *kTrue = "--> true\n", *kNil = "--> nil\n", *kAnything = "...";

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

  // Steps and what is heard at each: a line for the console, "@Select" for a key, "@wait 20" for milliseconds that
  // pass. An answer that ends in "..." says how the whole one begins.
  void talk(const std::vector<std::pair<std::string, std::string>>& steps) {
    for (const auto& [step, expected] : steps) {
      const std::string answer = step[0] == '@' ? doing(step.substr(1)) : say(step);
      const bool begins = expected.ends_with("...");
      const std::string wanted = expected.substr(0, expected.size() - 3 * begins);
      EXPECT_EQ(begins ? answer.substr(0, wanted.size()) : answer, wanted) << step;
    }
  }

  // What it has shown since the last look.
  std::string heard() {
    const std::string text = log();
    desktop.log.clear();
    return text;
  }

  bool loadEmpty() { return load("flags: 8bit\npage: {}"); }

 private:
  std::string doing(const std::string& action) {
    desktop.log.clear();
    if (action.starts_with("wait ")) {
      desktop.wait(uint32_t(std::stoi(action.substr(5))));
    } else {
      key(action);
    }
    return heard();
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
