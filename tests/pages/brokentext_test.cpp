// Pages full of text that doesn't decode, under random keys and events: nothing is reported, read outside or hung on.
#include <cstring>
#include <random>

#include "blockspage.h"
#include "engine/events/value.h"
#include "engine/screen/display.h"
#include "engine/text/textstyle.h"
#include "engine/text/utf8.h"
#include "gfx/foundation/hsdebug.h"
#include "kit/files.h"

namespace {

constexpr char kWidgets[] = R"(
  - {type: text, name: t0, x: 10, y: 10, width: 90, height: 60, textStyle: s0, highlightTextStyle: s1, multiline: true, align: right, value: "QQQQQQ QQQQ QQQQQQQQQQQQQQQQQQQQQQQQQQQQQQ", down: t1}
  - {type: text, name: t1, x: 110, y: 10, width: 200, height: 30, textStyle: s1, maxLength: 9, echoChar: Q, value: "QQQQQ", align: center, valign: center, down: s, up: t0}
  - {type: text, name: t2, x: 110, y: 50, width: 3, height: 30, textStyle: s2, multiline: true, master: t1, value: "QQQ QQQQQ"}
  - {type: select, name: s, x: 10, y: 80, width: 300, height: 20, textStyle: s0, highlightTextStyle: s2, showAll: true, choices: "|QQQ|QQQQ|Q", navigate: leftRight, down: v, up: t1}
  - {type: select, name: v, x: 10, y: 120, width: 100, height: 90, textStyle: s1, highlightTextStyle: s0, showAll: true, vertical: true, choices: "|QQQ|QQQQ|Q", navigate: upDown, align: center, right: c, left: s}
  - {type: number, name: n, x: 10, y: 220, width: 100, height: 20, textStyle: s2, highlightTextStyle: s2, size: 5, navigate: both, right: c}
  - type: textContainer
    name: c
    x: 200
    y: 120
    width: 200
    height: 60
    selectTextStyle: s1
    selectedLine: 1
    left: n
    right: t0
    children:
      - {x: 5, y: 24, style: s0, content: "QQQQQQQQQ"}
      - {x: 5, y: 48, style: s1, content: "QQQ QQQQQ"}
      - {x: 5, y: 72, style: s2, content: "QQQQQQQQQ"}
)";

// Bytes that begin, continue, cut and break sequences, with whole characters between them; never zero.
uint8_t badByte(std::mt19937& random) {
  constexpr uint8_t kLikely[] = {'a', 'b', ' ', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x80, 0xBF, 0xFF, 0xED};
  return random() % 4 ? kLikely[random() % std::size(kLikely)] : uint8_t(1 + random() % 255);
}

class BrokenTextTest : public BlocksTest {
 protected:
  BrokenTextTest() : before(hsSetHaltProc([] { ADD_FAILURE() << hsReportText(); })) {
    WriteFile("wrong.ttf", {'n', 'o', ' ', 'f', 'o', 'n', 't'});
  }
  ~BrokenTextTest() override { hsSetHaltProc(before); }

  // A page of all kinds whose every text is random bytes.
  void loadBroken(std::mt19937& random) {
    const char* const fonts[] = {"blocks.ttf", "blocks.ttf", "wrong.ttf"};
    const char* const encodings[] = {"utf8", "ascii", "utf16"};
    std::string styles;
    for (int i = 0; i < 3; ++i) {
      styles += "  - {name: s" + std::to_string(i) + ", font: " + fonts[random() % 3] +
                ", size: " + std::to_string(random() % 40) + ", encoding: " + encodings[random() % 3] +
                ", color: white" + (random() % 2 ? ", bgColor: 0x40808000" : "") +
                (random() % 2 ? ", antialias: true" : "") +
                (random() % 3 ? "" : ", letterExtra: " + std::to_string(int32_t(random()))) +
                (random() % 3 ? "" : ", horScale: " + std::to_string(int32_t(random()))) + "}\n";
    }
    build("page.kpg", "flags: 16bit\npage:\n type: group\n width: 720\n height: 480\n start: t0\n textStyles:\n" +
                          styles + " children:" + kWidgets);
    auto bytes = readFile("page.kpg");
    for (auto& byte : bytes)
      if (byte == 'Q') byte = static_cast<std::decay_t<decltype(byte)>>(badByte(random));
    WriteFile("page.kpg", {bytes.begin(), bytes.end()});
    ASSERT_TRUE(loadFile("page.kpg"));
  }

  void disturb(std::mt19937& random) {
    const char* const names[] = {"t0", "t1", "t2", "s", "v", "n", "c"};
    Widget* const target = widget(names[random() % std::size(names)]);
    if (!target) return;
    std::string bytes;
    for (uint32_t i = random() % 20; i > 0; --i) bytes += char(badByte(random));
    KuiValue value{random() % 3 ? KuiValue::kString : KuiValue::kInteger, bytes, int32_t(random() % 5)};
    switch (random() % 4) {
      case 0: eventSendSimple(target, kSetValue, 0, &value); break;
      case 1: eventSendSimple(target, kAddChoice, 0, &value); break;
      case 2: eventSendSimple(target, 0x4040001 + random() % 22, random() % 2 ? random() : random() % 3); break;
      default: widgetSetHighlight(target, random() % 2);
    }
  }

 private:
  hsHaltProc before;
};

TEST(Utf8, ACharacterThatIsCutIsNone) {
  const uint8_t euro[] = {0xE2, 0x82, 0xAC};
  int length = 0;
  EXPECT_EQ(utf8Decode(euro, 3, &length), 0x20AC);
  EXPECT_EQ(length, 3);
  for (const size_t available : {1, 2}) EXPECT_LT(utf8Decode(euro, available, &length), 0) << available;
}

TEST_F(BrokenTextTest, NothingIsReported) {
  constexpr const char* kKeys[] = {"Up", "Down", "Left", "Right", "UpLeft", "DownRight", "1", "9", "Clear", "Select"};
  std::mt19937 random(7);
  for (int page = 0; page < 60; ++page) {
    loadBroken(random);
    for (int turn = 0; turn < 30; ++turn) {
      key(kKeys[random() % std::size(kKeys)]);
      disturb(random);
      desktop.settle();
    }
  }
}

}  // namespace
