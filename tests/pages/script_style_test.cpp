// The class TextStyle, the styles of a page as scripts see them, and glyphs rendered ahead.
#include "engine/page/frame.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/text/textstyle.h"
#include "pages/scriptfixture.h"

namespace {

class ScriptStyleTest : public ScriptFontTest {
 protected:
  void SetUp() override {
    loadStyled("{font: blocks.ttf}, {name: body, size: 10, font: blocks.ttf}, {name: body, size: 11, tracking: 16}",
               "{type: text, name: words, textStyle: body, value: aa}, {type: slider, name: bar}");
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
  EXPECT_EQ(styleOf("textStyles.body;").letterExtra, 0x10000);  // the last of that name
  say("KOVA.kept = textStyles.body;");
  say("topFrame.UnloadPage();");
  EXPECT_EQ(styleOf("KOVA.kept;").size, 11);
}

TEST_P(ScriptStyleTest, AreMadeOfAnObjectsProperties) {
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

  talk({{"make(\"nowhere.ttf\", 12);", kNil},
        {"make(\"blocks.ttf\", \"big\");", kNil},
        {"new TextStyle(new Object());", kNil},
        {"make(5, 12);", "Error: ..."}});
  // One object initialised anew has the new style.
  EXPECT_EQ(styleOf("{ t = new TextStyle(o); o.size = 30; t.initialize(o); t; };").size, 30);
}

TEST_P(ScriptStyleTest, WidgetsTakeAndGiveCopies) {
  EXPECT_EQ(styleOf("widgets.words.style;").size, 10);
  say("widgets.words.style = make(\"blocks.ttf\", 20);");
  say("widgets.words.highlightStyle = textStyles.body;");
  EXPECT_EQ(styleOf("widgets.words.style;").size, 20);
  EXPECT_EQ(styleOf("widgets.words.highlightStyle;").size, 11);
  EXPECT_EQ(styleOf("textStyles.body;").size, 11);
  talk({{"widgets.words.style = 5;", "Expecting a style value\n--> 5\n"}, {"widgets.bar.style;", kNil}});
}

TEST_P(ScriptStyleTest, GlyphsAreRenderedAheadTwentyAtATime) {
  writeText("bad.txt", "\xFFx");  // nothing that decodes
  writeText("some.txt", "from the file");
  talk({{"textStyles.body.CacheGlyphs(\"0123456789abcdefghij\\351klm\");", kTrue},
        {"textStyles.body.CacheGlyphs(\"first\");", kTrue},
        {"textStyles.body.CacheGlyphsFromFile(\"bad.txt\");", kTrue},
        {"@wait 9", ""},
        {"@wait 1", "Caching 'first'\nCaching '0123456789abcde'\n"},
        {"@wait 30", "Caching 'fghij\303\251klm'\n"},
        {"textStyles.body.CacheGlyphsFromFile(\"SOME.TXT\");", kTrue},
        {"textStyles.body.CacheGlyphsFromFile(\"none.txt\");", kNil},
        {"topFrame.UnloadPage();", kAnything},
        {"@wait 10", "Caching 'from the file'\n"}});
}

}  // namespace
