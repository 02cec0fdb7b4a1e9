// What scripts see of text, number, select and text container widgets.
#include "scriptfixture.h"

namespace {

class ScriptTextTest : public ScriptFontTest {
 protected:
  void SetUp() override {
    loadStyled("{name: plain, font: blocks.ttf, size: 10, color: white}", R"(
        {type: text, name: t, textStyle: plain, value: abc},
        {type: text, name: e, textStyle: plain, maxLength: 3},
        {type: number, name: n, min: 5, max: 9},
        {type: select, name: s, choices: '|a|b', immediate: true, onChange: 'changed = 1;'},
        {type: select, name: none},
        {type: textContainer, name: c, selectedLine: 2, children: [{style: plain, content: a}]})");
  }
};
EVERY_COLLECTION(ScriptTextTest);

TEST_P(ScriptTextTest, ValuesAndLimits) {
  talk({{"widgets.t.value;", "--> \"abc\"\n"},
        {"widgets.t.value = \"a longer text\";", "--> \"a longer text\"\n"},
        {"widgets.t.value;", "--> \"a longer text\"\n"},
        {"widgets.t.value = 3;", "Expecting string value\n--> 3\n"},
        {"widgets.e.value = \"1234\";", "--> \"1234\"\n"},
        {"widgets.e.value;", "--> \"123\"\n"},
        {"widgets.n.value;", "--> 5\n"},
        {"widgets.n.value = 10;", "New value out of range: 10\n--> 10\n"},
        {"widgets.n.maxValue = 12;", "--> 12\n"},
        {"widgets.n.value = 12;", "--> 12\n"},
        {"widgets.n.minValue + widgets.n.maxValue + widgets.n.value;", "--> 29\n"},
        {"widgets.s.value;", "--> 0\n"},
        {"widgets.s.value = 1;", "--> 1\n"},
        {"widgets.s.value;", "--> 1\n"},
        {"widgets.s.minValue;", kNil},
        {"widgets.s.maxValue;", "--> 0\n"},  // answered, but not written
        {"widgets.s.AddElement(\"c\");", kTrue},
        {"widgets.s.AddElement(4);", "Expecting string value\n--> nil\n"},
        {"widgets.s.value = 2;", "--> 2\n"},
        {"widgets.none.value;", kNil},
        {"widgets.none.maxValue;", "--> 0\n"},
        {"widgets.t.AddElement(\"c\");", kNil},
        {"widgets.c.value;", "--> 2\n"},
        {"widgets.t.minValue;", kNil}});
}

// A script's event has no pointer to read or write by.
TEST_P(ScriptTextTest, EventsThatWantAPointerAreRefused) {
  for (const char* name : {"t", "e", "n", "s", "none", "c"})
    for (const char* id : {"0x4040001", "0x4040002", "0x4040003", "0x4040007", "0x4040008", "0x404000a", "0x404000b"})
      EXPECT_EQ(say(std::string("widgets.") + name + ".HandleEvent(" + id + ", 1234, 5678);"), kNil)
          << name << ' ' << id;
  talk({{"widgets.s.HandleEvent(0x4040005);", kTrue},
        {"widgets.t.HandleEvent(0x4030004);", kTrue},
        {"widgets.t.value;", "--> \"\"\n"}});
}

}  // namespace
