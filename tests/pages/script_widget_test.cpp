// The classes Widget and Frame as scripts meet them, active and inactive.
#include "pages/scriptfixture.h"

namespace {

class ScriptWidgetTest : public ScriptTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(load(R"(flags: 8bit
page:
  width: 720
  height: 480
  type: group
  name: root
  start: bar
  children:
    - {x: 300, y: 7, width: 100, height: 50, name: box, bgColor: 90, background: b.gif}
    - {x: 10, y: 100, width: 200, height: 9, name: bar, type: slider, min: 3, max: 40, value: 12}
    - {x: 10, y: 200, width: 20, height: 20, name: pic, type: image, src: one.gif}
    - {x: 10, y: 300, width: 20, height: 20, name: nest, type: frame}
    - {x: 1, y: 1, width: 1, height: 1, name: twin}
    - {x: 2, y: 1, width: 1, height: 1, name: twin}
)"));
  }
  static constexpr const char* kInactive = "Operation attempted on inactive widget\n--> nil\n";
  static constexpr const char* kInactiveFrame = "Operation attempted on inactive frame\n--> nil\n";
};
EVERY_COLLECTION(ScriptWidgetTest);

TEST_P(ScriptWidgetTest, PropertiesReadAndWrite) {
  talk({// Places are read from the page and written to the widget.
        {"widgets.box.x;", "--> 300\n"},
        {"widgets.box.x = 77; ", "--> 77\n"},
        {"widgets.box.x;", "--> 300\n"},
        {"widgets.box.height;", "--> 50\n"},
        {"widgets.box.width = \"w\";", "Expecting integer value\n--> \"w\"\n"},
        {"widgets.twin.x;", "--> 2\n"},
        // Values and limits.
        {"widgets.bar.value;", "--> 12\n"},
        {"widgets.bar.value = 40; ", "--> 40\n"},
        {"widgets.bar.value = 41;", "New value out of range: 41\n--> 41\n"},
        {"widgets.bar.value = \"x\";", "Expecting integer value\n--> \"x\"\n"},
        {"{ widgets.bar.value = widgets; nil; }", "BobToKuiValue - unknown type\n--> nil\n"},
        {"widgets.bar.value;", "--> 40\n"},
        {"widgets.bar.minValue;", "--> 3\n"},
        {"widgets.bar.maxValue = 99;", "--> 99\n"},
        {"widgets.bar.maxValue;", "--> 99\n"},
        {"widgets.bar.minValue = nil;", "Expecting integer value\n--> nil\n"},
        {"widgets.box.value;", kNil},
        {"widgets.box.maxValue;", kNil},
        // Looks.
        {"widgets.box.bgColor;", "--> 90\n"},
        {"widgets.box.bgColor = \"red\";", "Expecting an integer color value\n--> \"red\"\n"},
        {"widgets.box.background;", "--> \"b.gif\"\n"},
        {"widgets.box.background = 4;", "Expecting a string value or nil\n--> 4\n"},
        {"widgets.box.background = nil;", kNil},
        {"widgets.box.background;", kNil},
        {"widgets.box.highlighted;", kNil},
        {"widgets.box.highlighted = 0;", "--> 0\n"},
        {"widgets.box.highlighted;", kTrue},
        {"widgets.bar.highlighted;", kTrue},
        {"widgets.pic.src;", "--> \"one.gif\"\n"},
        {"widgets.pic.src = \"two.gif\";", "--> \"two.gif\"\n"},
        {"widgets.pic.src;", "--> \"two.gif\"\n"},
        {"widgets.pic.highlightSrc;", kNil},
        {"widgets.pic.highlightSrc = 3;", "Expecting string value\n--> 3\n"},
        {"widgets.box.src;", kNil},
        {"widgets.box.style;", kNil},
        {"widgets.box.style = 3;", "Expecting a style value\n--> 3\n"},
        // Anything else is the wrapper's own, and the next wrapper has it not.
        {"{ local w = widgets.box; w.mine = 5; w.mine; }", "--> 5\n"}});
  EXPECT_EQ(widget("box")->bounds.x, 77);
}

TEST_P(ScriptWidgetTest, MethodsActAndAnswer) {
  const std::pair<const char*, uint32_t> steps[] = {
      {"Hide()", kWidgetContentHidden},
      {"Show(false)", kWidgetBackgroundHidden},  // without an argument the background stays as it was
      {"Show()", kWidgetBackgroundHidden},
      {"Hide(true)", kWidgetContentHidden},
      {"HideBackground()", kWidgetContentHidden | kWidgetBackgroundHidden},
      {"ShowBackground()", kWidgetContentHidden},
      {"Show(true)", 0},
  };
  for (const auto& [call, hidden] : steps) {
    EXPECT_EQ(say(std::string("widgets.box.") + call + ";"), kTrue);
    EXPECT_EQ(widget("box")->flags & (kWidgetContentHidden | kWidgetBackgroundHidden), hidden) << call;
  }
  talk({{"widgets.box.SetFocus();", kTrue},
        {"frame.Focus().x;", "--> 300\n"},
        {"widgets.box.AddElement(\"x\");", kNil},
        {"widgets.box.AddElement(widgets);", "BobToKuiValue - unknown type\nInvalid value\n--> nil\n"},
        {"widgets.box.Hide(1, 2);", "Error: Too many argument..."}});
}

// What a script sends has no pointer; codes that need one do nothing, others are what the keys send.
TEST_P(ScriptWidgetTest, HandleEventSendsWordsOnly) {
  for (uint32_t code : {kGetValue, kSetValue, kGetMinimum, kGetMaximum})
    EXPECT_EQ(say("widgets.bar.HandleEvent(" + std::to_string(code) + ", 5, 6);"), kNil) << code;
  talk({{"widgets.pic.HandleEvent(0x4040013);", kNil},
        {"widgets.pic.HandleEvent(0x4040014, 12345);", kNil},
        {"widgets.bar.value;", "--> 12\n"},
        {"widgets.bar.HandleEvent(0x4040006, 55);", kTrue},
        {"widgets.bar.maxValue;", "--> 55\n"},
        {"widgets.box.HandleEvent(0x4030001, 1);", kTrue},
        {"widgets.box.highlighted;", kTrue},
        {"widgets.bar.HandleEvent(0x4030004);", kTrue},
        {"widgets.bar.value;", "--> 12\n"}});
}

TEST_P(ScriptWidgetTest, AWrapperThatOutlivesItsWidgetIsInactive) {
  say("KOVA.w = widgets.box;");
  say("KOVA.f = widgets.nest;");
  ASSERT_TRUE(load("flags: 8bit\npage: {type: group, children: [{name: other}]}"));
  for (const char* what :
       {"SetFocus()", "AddElement(1)", "Show()", "Hide(true)", "ShowBackground()", "HideBackground()", "HandleEvent(1)",
        "x", "y", "width", "height", "value", "minValue", "maxValue", "style", "highlightStyle", "src", "highlightSrc"})
    EXPECT_EQ(say(std::string("KOVA.w.") + what + ";"), kInactive) << what;
  talk({{"KOVA.w.bgColor;", "Operation attempted on inactive widget--> nil\n"},
        {"KOVA.w.background;", "Operation attempted on inactive widget--> nil\n"},
        {"KOVA.w.bgColor = 1;", "Operation attempted on inactive widget\n--> 1\n"},
        {"KOVA.w.background = 1;", "Operation attempted on inactive widget\n--> 1\n"},
        {"KOVA.w.x = 1;", "Operation attempted on inactive widget\n--> 1\n"},
        {"KOVA.w.highlighted = 1;", "Operation attempted on inactive widget\n--> 1\n"},
        {"KOVA.w.highlighted;", kNil},
        {"KOVA.f.LoadPage(\"page.kpg\");", kInactiveFrame},
        {"KOVA.f.UnloadPage();", kInactiveFrame},
        {"KOVA.f.Focus();", kInactiveFrame},
        {"KOVA.w.Push();", kNil},
        {"KOVA.w.Remove();", kNil},
        {"KOVA.w.OnEvent(1, Object);", kNil}});
}

// What looks like a widget to the language but is none.
TEST_P(ScriptWidgetTest, WrappersThatScriptsMakeHaveNoWidget) {
  talk({{"Widget.x;", kInactive},  // the class itself
        {"(new Widget()).Show();", kInactive},
        {"(new Frame()).value;", kInactive},
        {"(new Frame()).UnloadPage();", kInactiveFrame},
        {"Event.id;", kNil},
        {"Timer.timeRemaining;", kNil},
        // A wrapper of a widget that is given a target of its own lets go of the widget.
        {"widgets.box.SetFocus();", kTrue},
        {"KOVA.w = frame.Focus();", "--> ..."},
        {"KOVA.w.initialize().Push();", kTrue},
        {"KOVA.w.x;", kInactive},
        {"widgets.box.x;", "--> 300\n"},
        {"KOVA.w.Remove();", kTrue},
        {"widgets.box.LoadPage(\"x\");", "Error..."}});
}

}  // namespace
