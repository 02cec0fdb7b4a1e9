// The classes Widget and Frame as scripts meet them, active and inactive.
#include "pages/scriptfixture.h"

namespace {

class ScriptWidgetTest : public ScriptTest {
 protected:
  void loadWidgets() {
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
    desktop.log.clear();
  }
};
EVERY_COLLECTION(ScriptWidgetTest);

TEST_P(ScriptWidgetTest, PropertiesReadAndWrite) {
  loadWidgets();
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
        {"widgets.box.value;", "--> nil\n"},
        {"widgets.box.maxValue;", "--> nil\n"},
        // Looks.
        {"widgets.box.bgColor;", "--> 90\n"},
        {"widgets.box.bgColor = \"red\";", "Expecting an integer color value\n--> \"red\"\n"},
        {"widgets.box.background;", "--> \"b.gif\"\n"},
        {"widgets.box.background = 4;", "Expecting a string value or nil\n--> 4\n"},
        {"widgets.box.background = nil;", "--> nil\n"},
        {"widgets.box.background;", "--> nil\n"},
        {"widgets.box.highlighted;", "--> nil\n"},
        {"widgets.box.highlighted = 0;", "--> 0\n"},
        {"widgets.box.highlighted;", "--> true\n"},
        {"widgets.bar.highlighted;", "--> true\n"},
        {"widgets.pic.src;", "--> \"one.gif\"\n"},
        {"widgets.pic.src = \"two.gif\";", "--> \"two.gif\"\n"},
        {"widgets.pic.src;", "--> \"two.gif\"\n"},
        {"widgets.pic.highlightSrc;", "--> nil\n"},
        {"widgets.pic.highlightSrc = 3;", "Expecting string value\n--> 3\n"},
        {"widgets.box.src;", "--> nil\n"},
        {"widgets.box.style;", "--> nil\n"},
        {"widgets.box.style = 3;", "Expecting a style value\n--> 3\n"},
        // Anything else is the wrapper's own, and the next wrapper has it not.
        {"{ local w = widgets.box; w.mine = 5; w.mine; }", "--> 5\n"}});
  EXPECT_EQ(widget("box")->bounds.x, 77);
}

TEST_P(ScriptWidgetTest, MethodsActAndAnswer) {
  loadWidgets();
  EXPECT_EQ(say("widgets.box.SetFocus();"), "--> true\n");
  EXPECT_EQ(focusName(), "box");
  EXPECT_EQ(say("frame.Focus().x;"), "--> 300\n");

  const auto flags = [this] { return widget("box")->flags & (kWidgetContentHidden | kWidgetBackgroundHidden); };
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
    EXPECT_EQ(say(std::string("widgets.box.") + call + ";"), "--> true\n");
    EXPECT_EQ(flags(), hidden) << call;
  }

  EXPECT_EQ(say("widgets.box.AddElement(\"x\");"), "--> nil\n");
  EXPECT_EQ(say("widgets.box.AddElement(widgets);"), "BobToKuiValue - unknown type\nInvalid value\n--> nil\n");
  EXPECT_EQ(say("widgets.box.Hide(1, 2);").substr(0, 24), "Error: Too many argument");
}

// What a script sends has no pointer; codes that need one do nothing, others are what the keys send.
TEST_P(ScriptWidgetTest, HandleEventSendsWordsOnly) {
  loadWidgets();
  for (uint32_t code : {kGetValue, kSetValue, kGetMinimum, kGetMaximum})
    EXPECT_EQ(say("widgets.bar.HandleEvent(" + std::to_string(code) + ", 5, 6);"), "--> nil\n") << code;
  talk({{"widgets.pic.HandleEvent(0x4040013);", "--> nil\n"},
        {"widgets.pic.HandleEvent(0x4040014, 12345);", "--> nil\n"},
        {"widgets.bar.value;", "--> 12\n"},
        {"widgets.bar.HandleEvent(0x4040006, 55);", "--> true\n"},
        {"widgets.bar.maxValue;", "--> 55\n"},
        {"widgets.box.HandleEvent(0x4030001, 1);", "--> true\n"},
        {"widgets.box.highlighted;", "--> true\n"},
        {"widgets.bar.HandleEvent(0x4030004);", "--> true\n"},
        {"widgets.bar.value;", "--> 12\n"}});
}

TEST_P(ScriptWidgetTest, AWrapperThatOutlivesItsWidgetIsInactive) {
  loadWidgets();
  say("KOVA.w = widgets.box; KOVA.f = widgets.nest;");
  say("KOVA.f = widgets.nest;");
  ASSERT_TRUE(load("flags: 8bit\npage: {type: group, children: [{name: other}]}"));
  const std::string widgetText = "Operation attempted on inactive widget\n";
  const std::string frameText = "Operation attempted on inactive frame\n";
  for (const char* call : {"SetFocus()", "AddElement(1)", "Show()", "Hide(true)", "ShowBackground()",
                           "HideBackground()", "HandleEvent(1)"})
    EXPECT_EQ(say(std::string("KOVA.w.") + call + ";"), widgetText + "--> nil\n") << call;
  for (const char* property :
       {"x", "y", "width", "height", "value", "minValue", "maxValue", "style", "highlightStyle", "src", "highlightSrc"})
    EXPECT_EQ(say(std::string("KOVA.w.") + property + ";"), widgetText + "--> nil\n") << property;
  for (const char* property : {"bgColor", "background"}) {
    EXPECT_EQ(say(std::string("KOVA.w.") + property + ";"), "Operation attempted on inactive widget--> nil\n");
    EXPECT_EQ(say(std::string("KOVA.w.") + property + " = 1;"), widgetText + "--> 1\n");
  }
  EXPECT_EQ(say("KOVA.w.x = 1;"), widgetText + "--> 1\n");
  EXPECT_EQ(say("KOVA.w.highlighted = 1;"), "--> 1\n");
  EXPECT_EQ(say("KOVA.w.highlighted;"), "--> nil\n");
  EXPECT_EQ(say("KOVA.f.LoadPage(\"page.kpg\");"), frameText + "--> nil\n");
  EXPECT_EQ(say("KOVA.f.UnloadPage();"), frameText + "--> nil\n");
  EXPECT_EQ(say("KOVA.f.Focus();"), frameText + "--> nil\n");
  for (const char* call : {"Push()", "Remove()", "OnEvent(1, Object)"})
    EXPECT_EQ(say(std::string("KOVA.w.") + call + ";"), "--> nil\n") << call;
}

// What looks like a widget to the language but is none.
TEST_P(ScriptWidgetTest, WrappersThatScriptsMakeHaveNoWidget) {
  loadWidgets();
  const std::string inactive = "Operation attempted on inactive widget\n--> nil\n";
  EXPECT_EQ(say("Widget.x;"), inactive);  // the class itself
  EXPECT_EQ(say("(new Widget()).Show();"), inactive);
  EXPECT_EQ(say("(new Frame()).value;"), inactive);
  talk({{"(new Frame()).UnloadPage();", "Operation attempted on inactive frame\n--> nil\n"},
        {"Event.id;", "--> nil\n"},
        {"Timer.timeRemaining;", "--> nil\n"}});
  // A wrapper of a widget that is given a target of its own lets go of the widget.
  say("widgets.box.SetFocus();");
  EXPECT_EQ(say("KOVA.w = frame.Focus();").substr(0, 4), "--> ");
  EXPECT_EQ(say("KOVA.w.initialize().Push();"), "--> true\n");
  EXPECT_EQ(say("KOVA.w.x;"), inactive);
  EXPECT_EQ(say("widgets.box.x;"), "--> 300\n");
  EXPECT_EQ(say("KOVA.w.Remove();"), "--> true\n");
  EXPECT_EQ(say("widgets.box.LoadPage(\"x\");").substr(0, 5), "Error");
}

}  // namespace
