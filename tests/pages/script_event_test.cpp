// Events, targets and timers of scripts.
#include "pages/scriptfixture.h"

namespace {

class ScriptEventTest : public ScriptTest {
 protected:
  // The focus is on `a`. tell(text, result) makes a hook that displays the text and returns the result.
  void SetUp() override {
    ASSERT_TRUE(load(R"(flags: 8bit
page:
  type: group
  start: a
  onLoad: 'define tell(text, result) { return function (e) { stdout.Display(text, " "); return result; }; }'
  children:
    - {name: a, right: b, onClick: 'stdout.Display("click ");'}
    - {name: b, left: a}
)"));
  }
};
EVERY_COLLECTION(ScriptEventTest);

TEST_P(ScriptEventTest, HandlersConsumeUnlessTheyReturnNil) {
  talk({{R"(topFrame.OnEvent(0x80002, tell("first", nil));)", kTrue},
        {R"(topFrame.OnEvent(0x80002, tell("second", nil));)", kTrue},  // refused, quietly
        {R"(topFrame.ObserveEvent(0x80002, tell("seen", true));)", kTrue},
        {"@Select", "seen first click "},
        {R"(widgets.a.OnEvent(0x80001, tell("zero", 0));)", kTrue},
        {"@Right", "zero "}});
  EXPECT_EQ(focusName(), "a");  // 0 is true, so the frame never saw the key

  // Errors are reported and leave the event unconsumed.
  talk({{"widgets.b.OnEvent(0x80002, function (e) { nothing(); });", kTrue},
        {"widgets.b.SetFocus();", kTrue},
        {"@Select", "seen first Error: Unbound variable - nothing\nHa..."}});
  ASSERT_TRUE(loadEmpty());
  talk({{"@Select", ""}});  // hooks of a page go with it
}

TEST_P(ScriptEventTest, AnEventTellsItsWords) {
  talk({{"topFrame.OnEvent(0x80006, function (e) { KOVA.e = e; return true; });", kTrue},
        {"@7", ""},
        {"KOVA.e.id;", "--> 524294\n"},
        {"KOVA.e.classId;", "--> 8\n"},
        {"KOVA.e.eventId;", "--> 6\n"},
        {"KOVA.e.param0;", "--> -2147483641\n"},  // 0x80000007
        {"KOVA.e.timeStamp;", "--> 0\n"},         // keys carry no time
        {"KOVA.e.param1 = 3;", "Error: Attempt to set a read-only property\nHa..."},
        {"@wait 123", ""},
        {"widgets.b.OnEvent(0x1234FFFE, function (e) { KOVA.e = e; return true; });", kTrue},
        {"widgets.b.HandleEvent(0x1234FFFE, -2, 9);", kTrue},
        {"KOVA.e.timeStamp;", "--> 123\n"},
        {"KOVA.e.eventId;", "--> 65534\n"},
        {"KOVA.e.param0;", "--> -2\n"},
        {"KOVA.e.param1;", "--> 9\n"},
        {"KOVA.e.keyCode;", "--> 0\n"},
        {"(new Event()).id;", "Error:..."}});  // nothing initializes one
}

TEST_P(ScriptEventTest, TargetsHearWhileTheyAreActive) {
  talk({{"KOVA.t = new EventTarget();", kAnything},
        {R"(KOVA.t.ObserveEvent(0x80002, tell("target", true));)", kTrue},
        {"@Select", "click "},
        {"KOVA.t.Push();", kTrue},
        {"KOVA.t.Push();", kNil},
        {"@Select", "target click "},
        {R"(KOVA.t.OnEvent(0x80002, tell("mine", true));)", kTrue},
        {"@Select", "target mine "},
        {"KOVA.t.Remove();", kTrue},
        {"KOVA.t.Remove();", kNil},
        {"@Select", "click "},
        // An active target outlives its wrapper.
        {"KOVA.t.Push();", kTrue},
        {"KOVA.t = nil;", kNil},
        {"gc();", kAnything},
        {"@Select", "target mine "}});
}

// A target that leaves the active list from inside its own hook, its wrapper already gone or going.
TEST_P(ScriptEventTest, ATargetCanRemoveItselfWhileItHears) {
  talk({{"KOVA.t = new EventTarget();", kAnything},
        {R"(KOVA.t.OnEvent(0x80002, function (e) { KOVA.t.Remove(); KOVA.t = nil; gc(); stdout.Display("once "); });)",
         kTrue},
        {"KOVA.t.Push();", kTrue},
        {"@Select", "once "},  // a walk along the active targets ends where its target leaves
        {"@Select", "click "}});
}

TEST_P(ScriptEventTest, TimersFireStopAndTellWhatRemains) {
  talk({{R"(define tick() { stdout.Display("tick "); })", kAnything},
        {"KOVA.t = new Timer(tick, 50);", kAnything},
        {"KOVA.t.timeRemaining;", "--> 50\n"},
        {"@wait 49", ""},
        {"@wait 60", "tick "},
        {"KOVA.t.timeRemaining;", "--> -59\n"},
        {"KOVA.t.Set(10, true);", kTrue},
        {"@wait 35", "tick tick tick "},
        {"KOVA.t.timeRemaining = 100;", "--> 100\n"},  // and goes on repeating
        {"@wait 250", "tick tick "},
        {R"(KOVA.t.timeRemaining = "x";)", "Expecting integer value\n--> \"x\"\n"},
        {"KOVA.t.Clear();", kTrue},
        {"@wait 300", ""},
        {"KOVA.t = new Timer(tick);", kAnything},  // not armed until it is set
        {"@wait 5", ""},
        {"gc();", kAnything},
        {"KOVA.t.Set(3);", kTrue},
        {"@wait 5", "tick "}});
}

TEST_P(ScriptEventTest, AnArmedTimerKeepsItsCallbackAndARestingOneLetsGo) {
  for (int i = 0; i < 300; ++i) {
    // The closures of fired timers hold a vector each: three hundred of them would not fit.
    say("{ local v = new Vector(400); new Timer(function () { KOVA.last = v.size; }, 1); }");
    desktop.wait(3);
  }
  EXPECT_EQ(heard().find("Insufficient memory"), std::string::npos);
  talk({{"KOVA.last;", "--> 400\n"},
        {R"(new Timer(function () { stdout.Display("late "); nothing(); }, 20, true);)", kAnything},
        {"gc();", kAnything},
        {"@wait 25", "late Error: Unbound va..."},
        {"@wait 20", "late ..."}});  // an error doesn't stop it
}

TEST_P(ScriptEventTest, ATimerMayClearAndReplaceItselfWhileItFires) {
  talk({{R"(KOVA.t = new Timer(function () { KOVA.t.Clear(); stdout.Display("one "); )"
         R"(KOVA.t = new Timer(function () { stdout.Display("two "); }, 5); gc(); }, 5);)",
         kAnything},
        {"@wait 30", "one two "},
        // A repeating timer comes back even if its function has cleared it, unless that also made it a one-shot.
        {R"(KOVA.t = new Timer(function () { KOVA.t.Clear(); stdout.Display("again "); }, 5, true);)", kAnything},
        {"@wait 11", "again again "},
        {"KOVA.t.Clear();", kTrue},
        {R"(KOVA.t = new Timer(function () { KOVA.t.Set(1); KOVA.t.Clear(); stdout.Display("last "); }, 5, true);)",
         kAnything},
        {"@wait 30", "last "},
        {R"(KOVA.t.initialize(function () { stdout.Display("three "); }, 4);)", kAnything},
        {R"(KOVA.t.initialize(function () { stdout.Display("four "); }, 5);)", kAnything},  // the one before runs out
        {"@wait 30", "three four "}});
}

}  // namespace
