// The class TextStyle, the styles of a page as scripts see them, and glyphs rendered ahead.
#include "engine/page/frame.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/text/textstyle.h"
#include "pages/scriptfixture.h"

namespace {

class ScriptStyleTest : public ScriptFontTest {
 protected:
  void loadStyles() {
    loadStyled("{font: blocks.ttf}, {name: body, size: 10, font: blocks.ttf}, {name: body, size: 11, tracking: 16}");
    say("make = function (font, size) {"
        " local o = new Object(); o.font = font; o.size = size; return new TextStyle(o); };");
  }
  // The style that a line evaluates to, kept in `s`.
  TextStyle styleOf(const std::string& line) {
    say("s = " + line);
    BobValue value = kBobNil;
    BobInterp* interp = scriptInterp();
    bobFindGlobal(interp, bobScopeObject(topFrame()->scriptEnv->scope), bobIntern(interp, "s"), &value);
    const TextStyle* style = scriptStyleOf(interp, value);
    return style ? *style : TextStyle{};
  }
};
EVERY_COLLECTION(ScriptStyleTest);

TEST_P(ScriptStyleTest, PagesPublishCopiesOfTheirStyles) {
  loadStyles();
  EXPECT_EQ(styleOf("textStyles.body;").letterExtra, 0x10000);  // the last of that name
  say("KOVA.kept = textStyles.body;");
  say("topFrame.UnloadPage();");
  EXPECT_EQ(styleOf("KOVA.kept;").size, 11);
}

TEST_P(ScriptStyleTest, AreMadeOfAnObjectsProperties) {
  loadStyles();
  TextStyle style = styleOf("make(\"BLOCKS.TTF\", 12);");
  EXPECT_NE(style.font, nullptr);
  EXPECT_EQ(style.size, 12);
  EXPECT_EQ(style.color, 236u);  // white on an 8-bit screen
  EXPECT_EQ(style.styleFlags, 0u);

  say("o = new Object();");
  say("{ o.font = \"blocks.ttf\"; o.size = 9; o.color = 7; o.bgColor = 8; o.underline = nil; };");
  style = styleOf("new TextStyle(o);");
  EXPECT_EQ(style.color, 7u);
  EXPECT_EQ(style.bgColor, 8u);
  EXPECT_EQ(style.styleFlags, kTextStyleBackground | kTextStyleUnderline);  // underlined, whatever the value
  say("o.aliasCount = 3;");
  EXPECT_EQ(styleOf("new TextStyle(o);").bgColor, 3u);

  EXPECT_EQ(say("make(\"nowhere.ttf\", 12);"), "--> nil\n");
  EXPECT_EQ(say("make(\"blocks.ttf\", \"big\");"), "--> nil\n");
  EXPECT_EQ(say("new TextStyle(new Object());"), "--> nil\n");
  EXPECT_NE(say("make(5, 12);").find("Error: "), std::string::npos);
  // One object initialised anew has the new style.
  EXPECT_EQ(styleOf("{ t = new TextStyle(o); o.size = 30; t.initialize(o); t; };").size, 30);
}

TEST_P(ScriptStyleTest, WidgetsTakeAndGiveCopies) {
  loadStyled("{name: body, size: 10, font: blocks.ttf}",
             "{type: text, name: words, textStyle: body, value: aa}, {type: slider, name: bar}");
  EXPECT_EQ(styleOf("widgets.words.style;").size, 10);
  say("{ o = new Object(); o.font = \"blocks.ttf\"; o.size = 20; };");
  say("widgets.words.style = new TextStyle(o);");
  say("widgets.words.highlightStyle = textStyles.body;");
  EXPECT_EQ(styleOf("widgets.words.style;").size, 20);
  EXPECT_EQ(styleOf("widgets.words.highlightStyle;").size, 10);
  EXPECT_EQ(styleOf("textStyles.body;").size, 10);
  EXPECT_EQ(say("widgets.words.style = 5;"), "Expecting a style value\n--> 5\n");
  EXPECT_EQ(say("widgets.bar.style;"), "--> nil\n");
}

TEST_P(ScriptStyleTest, GlyphsAreRenderedAheadTwentyAtATime) {
  loadStyles();
  EXPECT_EQ(say("textStyles.body.CacheGlyphs(\"0123456789abcdefghij\\351klm\");"), "--> true\n");
  EXPECT_EQ(say("textStyles.body.CacheGlyphs(\"first\");"), "--> true\n");
  writeText("bad.txt", "\xFFx");  // nothing that decodes
  EXPECT_EQ(say("textStyles.body.CacheGlyphsFromFile(\"bad.txt\");"), "--> true\n");
  desktop.wait(9);
  EXPECT_EQ(heard(), "");
  desktop.wait(1);
  EXPECT_EQ(heard(), "Caching 'first'\nCaching '0123456789abcde'\n");
  desktop.wait(30);
  EXPECT_EQ(heard(), "Caching 'fghij\303\251klm'\n");

  writeText("some.txt", "from the file");
  EXPECT_EQ(say("textStyles.body.CacheGlyphsFromFile(\"SOME.TXT\");"), "--> true\n");
  EXPECT_EQ(say("textStyles.body.CacheGlyphsFromFile(\"none.txt\");"), "--> nil\n");
  say("topFrame.UnloadPage();");
  desktop.wait(10);
  EXPECT_EQ(heard(), "Caching 'from the file'\n");
}

}  // namespace
