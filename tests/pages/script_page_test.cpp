// Scripts over the life of pages: scopes, files, hooks that take their own page away, long sessions.
#include "engine/screen/display.h"
#include "pages/scriptfixture.h"

namespace {

class ScriptPageTest : public ScriptTest {};
EVERY_COLLECTION(ScriptPageTest);

TEST_P(ScriptPageTest, EveryScriptAttributeRunsAndThePixelsFollow) {
  ASSERT_TRUE(load(R"(flags: 16bit
page:
  width: 720
  height: 480
  type: group
  start: a
  onLoad: 'define say(t) { stdout.Display(t, " "); } say("load");'
  onUnload: 'say("unload"); say(toString(widgets.box.x)); '
  children:
    - {x: 10, y: 10, width: 20, height: 20, name: box, bgColor: 0xEB808000}
    - {x: 50, y: 10, width: 20, height: 20, name: bar, type: slider, navigate: upDown, immediate: true,
       right: a, onChange: 'say(toString(widgets.bar.value));'}
    - x: 80
      name: a
      left: bar
      onUp: say("up");
      onDown: |
        say("down");
        widgets.box.bgColor = 0x10808000;
      onFocus: say("focus");
      onBlur: say("blur");
      onClick: say("click");
)"));
  EXPECT_EQ(heard(), "load focus ");
  EXPECT_EQ(pixel(15, 15), 0xFCFCFCu);  // white, in five and six bits of luma
  for (const char* name : {"Up", "Down", "Select", "Left", "Up"}) key(name);
  EXPECT_EQ(heard(), "up down click blur 2 ");
  EXPECT_EQ(pixel(15, 15), 0u);
  EXPECT_EQ(say("frame.UnloadPage();"), "unload Operation attempted on inactive widget\nnil --> true\n");
}

TEST_P(ScriptPageTest, ScopesNestAndAreEmptiedWhenThePageGoes) {
  build("inner.kpg",
        "flags: 8bit\npage: {type: group, onLoad: 'mine = 1; stdout.Display(shared, parent.outer);', "
        "children: [{name: w, x: 7}]}");
  ASSERT_TRUE(
      load("flags: 8bit\npage: {type: group, onLoad: 'outer = 5; define show() { return 3; }', "
           "children: [{name: nest, type: frame, width: 9, height: 9}]}"));
  talk({{"KOVA.shared = 1;", "--> 1\n"},
        {"parent;", kNil},
        {"shared = 4;", "--> 4\n"},
        {"widgets.nest.LoadPage(\"inner.kpg\");", "45--> true\n"},
        {"mine;", "Error: Unbound variable - mine..."},  // not seen from outside
        {"widgets.nest.LoadPage(\"none.kpg\");", " -- 'none.kpg' not found\n--> nil\n"},
        {"widgets.nest.UnloadPage();", kNil}});
  ASSERT_TRUE(loadEmpty());
  talk({{"outer;", "Error: Unbound variable ..."},
        {"show;", "Error: Unbound variable ..."},
        {"shared;", "Error: Unbound variable ..."},
        {"KOVA.shared;", "--> 1\n"},
        {"widgets.nest;", "Error: No property -..."}});
  EXPECT_NE(say("widgets.Show();").find("Properties:\n--> nil\n"), std::string::npos);
}

TEST_P(ScriptPageTest, ScriptFilesAreObjectFiles) {
  writeText("tools.bob", "define twice(x) { return 2 * x; }\n");
  writeText("raw.bobo", "x = 1;");
  build("page.kpg", "flags: 8bit\npage: {scripts: [tools.bob, raw.bobo, none.bobo], onLoad: 'v = twice(21);'}");
  std::filesystem::rename("tools.bobo", "Tools.BOBO");  // names on the player have no case
  ASSERT_TRUE(loadFile("page.kpg"));
  EXPECT_EQ(heard(),
            "Error: Not an object file - raw.bobo\nError loading 'raw.bobo'\n"
            "Error: File not found - none.bobo\nError loading 'none.bobo'\n");
  EXPECT_EQ(say("v;"), "--> 42\n");
}

TEST_P(ScriptPageTest, TheConsoleGoesOnAfterAnyError) {
  ASSERT_TRUE(loadEmpty());
  talk({{"1 +;", "Error: Syntax error -..."},
        {"1 + 1;", "--> 2\n"},
        {"define f() { return g(); } ", "--> <Method-f>\n"},
        {"f();", "Error: Unbound variable - g..."},
        {"define deep(n) { return deep(n + 1); }", kAnything},
        {"deep(0);", "Error: Stack overflow..."},
        {"\"still here\";", "--> \"still here\"\n"}});
  const std::string traceback = say("f();");
  EXPECT_NE(traceback.find("Happened in f\n"), std::string::npos);
  EXPECT_EQ(traceback.find("-->"), std::string::npos);
  EXPECT_EQ(say("Quit();").find("-->"), std::string::npos);
}

// The hooks from which a script can take its own page away, and the keys that reach them.
struct Hook {
  const char* name;
  std::vector<const char*> keys;
};
const Hook kHooks[] = {{"onClick", {"Select"}},
                       {"onUp", {"Up"}},
                       {"onBlur", {"Right"}},
                       {"onFocus", {"Right"}},
                       {"onChange", {"Right", "Up"}}};

class ScriptHookTest : public ScriptTest {
 protected:
  ScriptHookTest() {
    build("next.kpg", "flags: 8bit\npage: {type: group, start: next, children: [{name: next, x: 9}]}");
  }
  // A page whose hook runs the script; for onLoad and onUnload the page's own, else a widget's.
  std::string page(const std::string& hook, const std::string& script) {
    const std::string on = hook + ": '" + script + "'";
    const bool own = hook == "onLoad" || hook == "onUnload";
    const bool second = hook == "onChange" || hook == "onFocus";
    return "flags: 8bit\npage:\n  type: group\n  start: a\n" + (own ? "  " + on + "\n" : "") +
           "  children:\n    - {name: nest, type: frame, width: 50, height: 50}\n    - {name: a, right: b" +
           (own || second ? "" : ", " + on) + "}\n    - {name: b, left: a, type: slider, navigate: upDown, " +
           "immediate: true" + (second ? ", " + on : "") + "}\n";
  }
  // What is heard when the hook of such a page has run.
  std::string running(const Hook& hook, const std::string& script) {
    EXPECT_TRUE(load(page(hook.name, script)));
    desktop.log.clear();
    for (const char* name : hook.keys) key(name);
    desktop.wait(5);
    return heard();
  }
};
EVERY_COLLECTION(ScriptHookTest);

TEST_P(ScriptHookTest, AHookMayUnloadItsPage) {
  for (const Hook& hook : kHooks) {
    EXPECT_EQ(running(hook, "KOVA.w = widgets.a; frame.UnloadPage(); stdout.Display(KOVA.w.x);"),
              "Operation attempted on inactive widget\nnil")
        << hook.name;
    EXPECT_EQ(topFrame()->pageData, nullptr) << hook.name;
  }
}

// A nested page that takes the page around it along: its frame has gone before its own unloading is through.
TEST_P(ScriptHookTest, APageInsideMayUnloadThePageAround) {
  build("in.kpg",
        "flags: 8bit\npage: {onLoad: 'KOVA.f = function () { return frame.x; };', "
        "onUnload: 'topFrame.UnloadPage();'}");
  ASSERT_TRUE(load(page("onUp", "")));
  talk({{"widgets.nest.LoadPage(\"in.kpg\");", kTrue},
        {"KOVA.f();", "--> 0\n"},
        {"widgets.nest.UnloadPage();", kTrue},
        {"KOVA.f();", "Operation attempted on inactive widget\n--> nil\n"},
        {"KOVA.f = nil;", kNil}});
  EXPECT_EQ(topFrame()->pageData, nullptr);
}

TEST_P(ScriptHookTest, AHookMayLoadAnotherPage) {
  for (const Hook& hook : kHooks) {
    EXPECT_EQ(running(hook, "stdout.Display(topFrame.LoadPage(\"next.kpg\"), widgets.next.x);"), "true9") << hook.name;
    EXPECT_EQ(focusName(), "next") << hook.name;
  }
  // A load yields to the one that its script asks for, and has not failed for that.
  EXPECT_TRUE(load(page("onLoad", "stdout.Display(topFrame.LoadPage(\"next.kpg\"));")));
  EXPECT_EQ(heard(), "true");
  EXPECT_EQ(focusName(), "next");
  EXPECT_TRUE(load(page("onLoad", "topFrame.UnloadPage();")));
  EXPECT_EQ(topFrame()->pageData, nullptr);
  ASSERT_TRUE(load(page("onUnload", "stdout.Display(topFrame.LoadPage(\"next.kpg\"));")));
  EXPECT_EQ(say("frame.UnloadPage();"), "nil--> true\n");
  EXPECT_EQ(focusName(), "(none)");
}

// Pages that load themselves end by the language's own bound.
TEST_P(ScriptHookTest, AHookMayLoadItsOwnPageOrNestIt) {
  for (const Hook& hook : kHooks) {
    EXPECT_TRUE(running(hook, "stdout.Display(topFrame.LoadPage(\"page.kpg\"));").starts_with("true")) << hook.name;
    EXPECT_EQ(focusName(), "a");
    EXPECT_TRUE(running(hook, "stdout.Display(widgets.nest.LoadPage(\"page.kpg\"));").starts_with("true")) << hook.name;
  }
  if (GetParam()) return;  // the depth of these takes its time
  load("flags: 8bit\npage: {onLoad: 'topFrame.LoadPage(\"page.kpg\");'}");
  const std::string text = heard();
  EXPECT_TRUE(text.starts_with("Error: Stack overflow") || text.starts_with("Error: Insufficient memory")) << text;
  load(page("onLoad", "widgets.nest.LoadPage(\"page.kpg\");"));
  EXPECT_NE(heard().find(" -- 'page.kpg' not found\n"), std::string::npos);  // frames have a bound of their own
}

// Each event climbs from the bottom of 150 groups to a script that sends it down again, or loads the page anew.
TEST_P(ScriptHookTest, EndlessEventsAndLoadsEnd) {
  if (GetParam()) return;  // the depth of these takes its time
  std::string inner = "{name: bottom}";
  for (int depth = 150; depth > 0; --depth) inner = "{type: group, children: [" + inner + "]}";
  for (const std::string again : {"widgets.bottom.HandleEvent(0x4030);", "topFrame.LoadPage(\"page.kpg\");"}) {
    load("flags: 8bit\npage: {name: top, type: group, onUp: '" + again + "', children: [" + inner +
         "], onLoad: 'widgets.top.OnEvent(0x4030, function (e) { " + again +
         " }); widgets.bottom.HandleEvent(0x4030);'}");
    say("frame.UnloadPage();");
    EXPECT_EQ(say("1;"), "--> 1\n");
  }
}

TEST_P(ScriptHookTest, EventsAndTimersMayTakeThePageToo) {
  const std::string go =
      "function (e) { topFrame.LoadPage(\"next.kpg\"); topFrame.UnloadPage(); "
      "topFrame.LoadPage(\"next.kpg\"); gc(); }";
  for (const std::string& hook :
       {"topFrame.OnEvent(0x80002, " + go + ");", "topFrame.ObserveEvent(0x80002, " + go + ");",
        "widgets.a.OnEvent(0x80002, " + go + ");", "new Timer(function () { (" + go + ")(1); }, 3, true);",
        "widgets.a.OnEvent(0x4030004, " + go + "); topFrame.UnloadPage(); topFrame.LoadPage(\"next.kpg\");"}) {
    ASSERT_TRUE(load(page("onUp", "")));
    say("{ " + hook + " }");
    key("Select");
    desktop.wait(10);
    EXPECT_EQ(focusName(), "next") << hook;
  }
  // From inside an event that a script sends to its own widget.
  ASSERT_TRUE(load(page("onUp", "frame.UnloadPage();")));
  EXPECT_EQ(say("widgets.a.HandleEvent(0x404000d);"), "--> true\n");
  EXPECT_EQ(topFrame()->pageData, nullptr);
}

// Heap, handles and native records stay flat over page changes; names stay for good, so they are reused here.
class ScriptSessionTest : public PageTest {};

TEST_F(ScriptSessionTest, TenThousandPageChangesOverAThousandPagesStayFlat) {
  const auto nameOf = [](int i) { return "p" + std::to_string(i % 1000) + ".kpg"; };
  for (int i = 0; i < 1000; ++i)
    build(nameOf(i),
          "flags: 8bit\npage: {type: group, onLoad: 'keep = new Vector(20); KOVA.last = widgets.a; "
          "widgets.b.OnEvent(1, function (e) { return keep; }); new Timer(function () { keep; }, 1);', "
          "children: [{name: a, x: " +
              std::to_string(i) + "}, {name: b}, {name: nest, type: frame}]}");
  BobInterp* interp = scriptInterp();
  const auto change = [&](int from, int to) {
    for (int i = from; i < to; ++i) {
      frameLoad(topFrame(), nameOf(i).c_str());
      desktop.wait(2);
    }
    bobCollect(interp);
    bobCollect(interp);  // what finalizers let go of in the first
    desktop.log.clear();
  };
  change(0, 2000);
  const BobMemory before = bobMemory(interp);
  change(2000, 10000);
  const BobMemory after = bobMemory(interp);
  EXPECT_EQ(after.heapBytes, before.heapBytes);
  EXPECT_EQ(after.arenaBytes, before.arenaBytes);
  EXPECT_EQ(after.nativeBytes, before.nativeBytes);
  EXPECT_LE(after.handles, before.handles + 16);  // a number wears out after 4,096 uses
  desktop.typeLine("KOVA.last.x;");
  EXPECT_EQ(log(), "--> 999\n");
}

}  // namespace
