// Events, targets and timers of scripts.
#include "pages/scriptfixture.h"

namespace {

class ScriptEventTest : public ScriptTest {
 protected:
  void loadPage(const std::string& onLoad = "") {
    ASSERT_TRUE(load("flags: 8bit\npage:\n  type: group\n  start: a\n  onLoad: '" + onLoad +
                     "'\n  children:\n"
                     "    - {name: a, right: b, onClick: 'stdout.Display(\"click \");'}\n"
                     "    - {name: b, left: a}\n"));
    desktop.log.clear();
  }
  // Defines show(text): a function that displays it and returns `result`.
  void defineTeller() {
    say("define tell(text, result) { return function (e) { stdout.Display(text, \" \"); return result; }; }");
  }
};
EVERY_COLLECTION(ScriptEventTest);

TEST_P(ScriptEventTest, HandlersConsumeUnlessTheyGiveNil) {
  loadPage();
  defineTeller();
  EXPECT_EQ(say("topFrame.OnEvent(0x80002, tell(\"first\", nil));"), "--> true\n");
  EXPECT_EQ(say("topFrame.OnEvent(0x80002, tell(\"second\", nil));"), "--> true\n");  // refused, quietly
  EXPECT_EQ(say("topFrame.ObserveEvent(0x80002, tell(\"seen\", true));"), "--> true\n");
  key("Select");
  EXPECT_EQ(heard(), "seen first click ");
  EXPECT_EQ(say("widgets.a.OnEvent(0x80001, tell(\"zero\", 0));"), "--> true\n");
  key("Right");
  EXPECT_EQ(heard(), "zero ");
  EXPECT_EQ(focusName(), "a");  // 0 is true, so the frame never saw the key

  // Errors are reported and leave the event unconsumed.
  say("widgets.b.OnEvent(0x80002, function (e) { nothing(); });");
  say("widgets.b.SetFocus();");
  desktop.log.clear();
  key("Select");
  EXPECT_EQ(heard().substr(0, 47), "seen first Error: Unbound variable - nothing\nHa");
  ASSERT_TRUE(load("flags: 8bit\npage: {}"));
  desktop.log.clear();
  key("Select");
  EXPECT_EQ(heard(), "");  // hooks of a page go with it
}

TEST_P(ScriptEventTest, AnEventTellsItsWords) {
  loadPage();
  say("topFrame.OnEvent(0x80006, function (e) { KOVA.e = e; return true; });");
  key("7");
  EXPECT_EQ(say("KOVA.e.id;"), "--> 524294\n");
  EXPECT_EQ(say("KOVA.e.classId;"), "--> 8\n");
  EXPECT_EQ(say("KOVA.e.eventId;"), "--> 6\n");
  EXPECT_EQ(say("KOVA.e.param0;"), "--> -2147483641\n");  // 0x80000007
  EXPECT_EQ(say("KOVA.e.timeStamp;"), "--> 0\n");         // keys carry no time
  EXPECT_EQ(say("KOVA.e.param1 = 3;").substr(0, 45), "Error: Attempt to set a read-only property\nHa");

  desktop.wait(123);
  say("widgets.b.OnEvent(0x1234FFFE, function (e) { KOVA.e = e; return true; });");
  EXPECT_EQ(say("widgets.b.HandleEvent(0x1234FFFE, -2, 9);"), "--> true\n");
  EXPECT_EQ(say("KOVA.e.timeStamp;"), "--> 123\n");
  EXPECT_EQ(say("KOVA.e.eventId;"), "--> 65534\n");
  EXPECT_EQ(say("KOVA.e.param0;"), "--> -2\n");
  EXPECT_EQ(say("KOVA.e.param1;"), "--> 9\n");
  EXPECT_EQ(say("KOVA.e.keyCode;"), "--> 0\n");
  EXPECT_EQ(say("(new Event()).id;").substr(0, 6), "Error:");  // nothing initializes one
}

TEST_P(ScriptEventTest, TargetsHearWhileTheyAreActive) {
  loadPage();
  defineTeller();
  say("KOVA.t = new EventTarget();");
  say("KOVA.t.ObserveEvent(0x80002, tell(\"target\", true));");
  key("Select");
  EXPECT_EQ(heard().find("target"), std::string::npos);
  EXPECT_EQ(say("KOVA.t.Push();"), "--> true\n");
  EXPECT_EQ(say("KOVA.t.Push();"), "--> nil\n");
  key("Select");
  EXPECT_EQ(heard(), "target click ");
  say("KOVA.t.OnEvent(0x80002, tell(\"mine\", true));");
  key("Select");
  EXPECT_EQ(say("KOVA.t.Remove();"), "--> true\n");
  EXPECT_EQ(say("KOVA.t.Remove();"), "--> nil\n");
  key("Select");
  EXPECT_EQ(heard(), "click ");

  // An active target outlives its wrapper; one at rest goes with it.
  say("KOVA.t.Push();");
  say("KOVA.t = nil;");
  say("gc();");
  desktop.log.clear();
  key("Select");
  EXPECT_EQ(heard(), "target mine ");
}

// A target that leaves the active list from inside its own hook, its wrapper already gone or going.
TEST_P(ScriptEventTest, ATargetCanRemoveItselfWhileItHears) {
  loadPage();
  say("KOVA.t = new EventTarget();");
  say("KOVA.t.OnEvent(0x80002, function (e) { KOVA.t.Remove(); KOVA.t = nil; gc(); stdout.Display(\"once \"); });");
  say("KOVA.t.Push();");
  desktop.log.clear();
  key("Select");
  key("Select");
  EXPECT_EQ(heard(), "once click ");  // a walk along the active targets ends where its target leaves
}

TEST_P(ScriptEventTest, TimersFireStopAndTellWhatRemains) {
  loadPage();
  say("define tick() { stdout.Display(\"tick \"); }");
  say("KOVA.t = new Timer(tick, 50);");
  EXPECT_EQ(say("KOVA.t.timeRemaining;"), "--> 50\n");
  desktop.wait(49);
  EXPECT_EQ(heard(), "");
  desktop.wait(60);
  EXPECT_EQ(heard(), "tick ");
  EXPECT_EQ(say("KOVA.t.timeRemaining;"), "--> -59\n");
  EXPECT_EQ(say("KOVA.t.Set(10, true);"), "--> true\n");
  desktop.log.clear();
  desktop.wait(35);
  EXPECT_EQ(heard(), "tick tick tick ");
  say("KOVA.t.timeRemaining = 100;");  // and goes on repeating
  desktop.wait(250);
  EXPECT_EQ(heard(), "tick tick ");
  EXPECT_EQ(say("KOVA.t.timeRemaining = \"x\";"), "Expecting integer value\n--> \"x\"\n");
  EXPECT_EQ(say("KOVA.t.Clear();"), "--> true\n");
  desktop.wait(300);
  EXPECT_EQ(heard(), "");
  say("KOVA.t = new Timer(tick);");  // not armed until it is set
  desktop.wait(5);
  EXPECT_EQ(heard(), "");
  say("gc();");
  say("KOVA.t.Set(3);");
  desktop.log.clear();
  desktop.wait(5);
  EXPECT_EQ(heard(), "tick ");
}

TEST_P(ScriptEventTest, AnArmedTimerKeepsItsCallbackAndARestingOneLetsGo) {
  loadPage();
  for (int i = 0; i < 300; ++i) {
    // The closures of fired timers hold a vector each: three hundred of them would not fit.
    say("{ local v = new Vector(400); new Timer(function () { KOVA.last = v.size; }, 1); }");
    desktop.wait(3);
  }
  EXPECT_EQ(heard().find("Insufficient memory"), std::string::npos);
  EXPECT_EQ(say("KOVA.last;"), "--> 400\n");

  say("new Timer(function () { stdout.Display(\"late \"); nothing(); }, 20, true);");
  say("gc();");
  desktop.log.clear();
  desktop.wait(45);
  const std::string text = heard();
  EXPECT_EQ(text.substr(0, 22), "late Error: Unbound va");  // an error doesn't stop it
  EXPECT_NE(text.find("late", 10), std::string::npos);
}

TEST_P(ScriptEventTest, ATimerMayClearAndReplaceItselfWhileItFires) {
  loadPage();
  say("KOVA.t = new Timer(function () { KOVA.t.Clear(); stdout.Display(\"one \"); "
      "KOVA.t = new Timer(function () { stdout.Display(\"two \"); }, 5); gc(); }, 5);");
  desktop.log.clear();
  desktop.wait(30);
  EXPECT_EQ(heard(), "one two ");
  // A repeating timer comes back even if its function has cleared it, unless that also made it a one-shot.
  say("KOVA.t = new Timer(function () { KOVA.t.Clear(); stdout.Display(\"again \"); }, 5, true);");
  desktop.log.clear();
  desktop.wait(11);
  EXPECT_EQ(heard(), "again again ");
  say("KOVA.t.Clear();");
  say("KOVA.t = new Timer(function () { KOVA.t.Set(1); KOVA.t.Clear(); stdout.Display(\"last \"); }, 5, true);");
  desktop.log.clear();
  desktop.wait(30);
  EXPECT_EQ(heard(), "last ");
  say("KOVA.t.initialize(function () { stdout.Display(\"three \"); }, 4);");
  say("KOVA.t.initialize(function () { stdout.Display(\"four \"); }, 5);");  // the one before runs out
  desktop.log.clear();
  desktop.wait(30);
  EXPECT_EQ(heard(), "three four ");
}

}  // namespace
