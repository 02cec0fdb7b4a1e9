#include "checkfixture.h"

namespace {

// A page that fills the screen and has the widgets `a`, `f` (a frame), `bar` (a slider) and, with a hook, `go`.
class CheckedScriptsTest : public CheckTest {
 protected:
  // The hook's lines begin with line 9, those of onLoad with line `kLoad`.
  Found checkScripts(const std::string& onClick, const std::string& onLoad = "", const std::string& more = "") {
    return check(
        "page:\n  type: group\n  width: 720\n  height: 480\n  textStyles: [{name: s, font: s.ttf}]\n  children:\n"
        "    - name: go\n      onClick: |\n" +
            indented(onClick, "        ") +
            "    - {name: a}\n    - {name: f, type: frame}\n"
            "    - {name: bar, type: slider, fgColor: 1, bgColor: 2}\n" +
            (onLoad.empty() ? "" : "  onLoad: |\n" + indented(onLoad, "    ")) + more,
        {"missing-file"});
  }
  static constexpr int kLoad = 14;  // after a hook of one line

 private:
  static std::string indented(std::string text, const std::string& by) {
    if (!text.ends_with('\n')) text += '\n';
    std::string lines;
    for (size_t at = 0, end; at < text.size(); at = end + 1) {
      end = text.find('\n', at);
      lines += by + text.substr(at, end - at) + "\n";
    }
    return lines;
  }
};

TEST_F(CheckedScriptsTest, GlobalsThatNothingSets) {
  EXPECT_EQ(checkScripts("x = 1;\ncuont++;\n"), Found{"10 unset-global"});
  EXPECT_EQ(checkScripts("count++;", "count = 0;"), Found{});
  EXPECT_EQ(checkScripts("{ local n = 1; n++; toString(n); gc(); new Timer(nil); KOVA.x; parent; }"), Found{});
  EXPECT_EQ(checkScripts("tell();"), Found{"9 unset-global"});
  writeText("tools.bob", "define tell() { return told; }\n");
  EXPECT_EQ(checkScripts("tell();", "told = 1;", "  scripts: [tools.bob]\n"), Found{});
  EXPECT_EQ(checkScripts("Eval(\"x = 1;\"); y = x;"), Found{});
  // A smaller page is one for a frame, and sees the page around it.
  EXPECT_EQ(check("page:\n  width: 719\n  height: 480\n  onClick: y = x;\n"), Found{});
  EXPECT_EQ(check("page:\n  width: 720\n  height: 480\n  onClick: y = x;\n"), Found{"4 unset-global"});
}

TEST_F(CheckedScriptsTest, FindingsInScriptFilesHaveTheirLines) {
  writeText("tools.bob", "define tell() {\n  return told;\n}\n");
  writeText("p.yaml", "page:\n  width: 720\n  height: 480\n  scripts: [tools.bob]\n");
  const CheckReport report = checkPageSource("p.yaml");
  ASSERT_EQ(report.findings.size(), 1u);
  EXPECT_EQ(report.findings[0].message.file, "tools.bob");
  EXPECT_EQ(report.findings[0].message.line, 2);
}

TEST_F(CheckedScriptsTest, MembersThatThePlayerDoesNotHave) {
  EXPECT_EQ(
      checkScripts("widgets.a.SetFocus();\nwidgets.a.SetFocsu();\nwidgets.b.Show();\ntextStyles.s;\ntextStyles.t;\n"),
      (Found{"10 unknown-member", "11 no-such-name", "13 no-such-name"}));
  EXPECT_EQ(checkScripts("widgets.f.LoadPage(\"x\");\nwidgets.a.LoadPage(\"x\");\ntopFrame.Focus();\nframe.Focsu();\n"),
            (Found{"10 unknown-member", "12 unknown-member"}));
  EXPECT_EQ(checkScripts("widgets.bar.value = 3;\nwidgets.bar.valeu = 3;\n"), Found{"10 unknown-member"});
  EXPECT_EQ(checkScripts("widgets.a.mine = 3;\ny = widgets.a.mine + 1;\n"), Found{});
}

TEST_F(CheckedScriptsTest, WhatTheLanguageTakesOtherwise) {
  EXPECT_EQ(checkScripts("try { x = 1; } catch (e) { }\nthrow 1;\n"), Found{"10 no-throw"});
  EXPECT_EQ(checkScripts("x = 0;\nwhile (x < 3) { local y = x++; switch (y) { case 1: continue; } }\n"),
            Found{"10 continue-in-switch"});
  EXPECT_EQ(checkScripts("x = 0;\nwhile (x < 3) { local y = x++; if (y == 1) continue; }\n"), Found{});
  EXPECT_EQ(checkScripts("x = new Object();\nx.aliasCount = 2;\n"), Found{"10 alias-count"});
  // Each addition takes 5 bytes.
  const auto sum = [](int additions) {
    std::string text = "x = 1";
    for (int i = 0; i < additions; ++i) text += " + 1";
    return text + ";";
  };
  EXPECT_EQ(checkScripts(sum(740)), Found{"9 statement-size"});
  EXPECT_EQ(checkScripts(sum(730)), Found{});
}

TEST_F(CheckedScriptsTest, ScriptsThatFailAsThePageOpens) {
  EXPECT_EQ(checkScripts("x = 1;", "y = 1;\n\\[].Pop();\n"), Found{std::to_string(kLoad + 1) + " script-fails"});
  EXPECT_EQ(checkScripts("x = 1;", "y = z;"), Found{std::to_string(kLoad) + " unset-global"});
}

TEST_F(CheckedScriptsTest, TimersThatDontEnd) {
  const char* const timer = "t = new Timer(function () { x = 1; }, 500, true);";
  EXPECT_EQ(checkScripts(timer), Found{"9 endless-timer"});
  EXPECT_EQ(checkScripts(timer, "", "  onUnload: t.Clear();\n"), Found{});
  EXPECT_EQ(checkScripts("t = new Timer(function () { x = 1; }, 500, false);"), Found{});
  EXPECT_EQ(checkScripts("t = new Timer(function () { x = 1; });\nt.Set(500, true);\n"), Found{"10 endless-timer"});
  EXPECT_EQ(checkScripts("t = new Timer(function () { x = 1; }, 0, true);"), Found{"9 zero-timer"});
  EXPECT_EQ(checkScripts("t = new Timer(function () { x = 1; });\nt.Set(0, true);\nt.Clear();\n"),
            Found{"10 zero-timer"});
  EXPECT_EQ(checkScripts("t = new Timer(function () { t.Clear(); }, 500, true);"), Found{"9 timer-restarts"});
  EXPECT_EQ(checkScripts("t = new Timer(function () { t.Set(1); t.Clear(); }, 500, true);"), Found{});
}

TEST_F(CheckedScriptsTest, FunctionsForEventsThatAreGivenTwice) {
  EXPECT_EQ(checkScripts("frame.OnEvent(0x80006, nil);"), Found{"9 handler-again"});
  EXPECT_EQ(checkScripts("widgets.a.ObserveEvent(0x80006, nil);"), Found{"9 handler-again"});
  EXPECT_EQ(checkScripts("x = 1;", "frame.OnEvent(1, nil); widgets.a.OnEvent(1, nil); frame.OnEvent(2, nil);"),
            Found{});
  EXPECT_EQ(checkScripts("x = 1;", "frame.OnEvent(1, nil);\nframe.OnEvent(1, nil);\n"),
            Found{std::to_string(kLoad + 1) + " handler-again"});
  EXPECT_EQ(checkScripts("t = new EventTarget();\nt.Push();\n"), Found{"10 stays-active"});
  EXPECT_EQ(checkScripts("t = new EventTarget();\nt.Push();\n", "", "  onUnload: t.Remove();\n"), Found{});
  EXPECT_EQ(checkScripts("v = \\[];\nv.Push(1);\n"), Found{});
}

TEST_F(CheckedScriptsTest, ListsThatScrollOnAndOn) {
  const auto list = [&](const std::string& more) {
    return check(
        "page:\n  type: group\n  width: 720\n  height: 480\n  textStyles: [{name: s, font: s.ttf}]\n"
        "  children:\n    - {type: textContainer, name: l, right: r" +
            more + "}\n    - {name: r, left: l}\n",
        {"missing-file"});
  };
  EXPECT_EQ(list(""), Found{"7 endless-scroll"});
  EXPECT_EQ(list(", selectedLine: 1, selectTextStyle: s"), Found{});
  EXPECT_EQ(list(", onFocus: 'list = widgets.l; x = function () { list.OnEvent(0x4040011, nil); };'"), Found{});
}

}  // namespace
