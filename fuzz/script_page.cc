// A page full of hooks that is driven at random: keys, waits, and console lines made of what scripts can do to pages.
//
// The first byte chooses the page, each of the following is one action; bytes from 0x80 on are lines of the console,
// whose statements take their pieces from the bytes after it.
#include <algorithm>
#include <string>
#include <utility>

#include "choices.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "player.h"
#include "support/looking.h"

namespace {

constexpr size_t kEventsBetweenLooks = 400;

constexpr int kMostActions = 12, kMostWait = 20;  // milliseconds of all waits, in each of which timers fire

constexpr const char* kKeys[] = {"Up", "Down", "Left", "Right", "Select", "Clear", "1", "2", "5", "S"};
constexpr const char* kObjects[] = {"widgets.a", "widgets.b", "widgets.nest",  "topFrame", "frame",
                                    "KOVA.w",    "KOVA.t",    "frame.Focus()", "KOVA.e",   "Widget",
                                    "KOVA.f",    "parent",    "new Widget()",  "KOVA.s"};
constexpr const char* kCalls[] = {".LoadPage(\"one.kpg\")",
                                  ".LoadPage(\"two.kpg\")",
                                  ".LoadPage(\"none.kpg\")",
                                  ".UnloadPage()",
                                  ".SetFocus()",
                                  ".Hide(true)",
                                  ".Show()",
                                  ".x",
                                  ".value",
                                  ".value = 7",
                                  ".background = \"none.gif\"",
                                  ".maxValue = 3",
                                  ".highlighted = 1",
                                  ".initialize(KOVA.f, 2, true)",
                                  ".initialize()",
                                  ".HandleEvent(0x404000d)",
                                  ".HandleEvent(0x4030004)",
                                  ".HandleEvent(0x4040001)",
                                  ".HandleEvent(0x80002)",
                                  ".Push()",
                                  ".Remove()",
                                  ".OnEvent(0x80002, KOVA.f)",
                                  ".OnEvent(0x4030004, KOVA.f)",
                                  ".ObserveEvent(0x80001, KOVA.f)",
                                  ".Set(1, true)",
                                  ".Clear()",
                                  ".timeRemaining = 2",
                                  ".Close()",
                                  ".AddElement(1)"};
constexpr const char* kWhole[] = {"gc();",
                                  "KOVA.w = widgets.a;",
                                  "KOVA.w = frame.Focus();",
                                  "KOVA.t = new EventTarget();",
                                  "KOVA.t = new Timer(KOVA.f, 3);",
                                  "KOVA.t = nil;",
                                  "KOVA.s = new StringTable(\"one.kpg\");",
                                  "KOVA.e.id; widgets = nil;"};

// Hooks call KOVA.f, so what a line stores there runs from anywhere. Since it mostly calls hooks again, it runs ten
// times a line at most.
std::string pageSource(const std::string& other) {
  std::string text =
      "flags: 8bit\npage:\n  width: 720\n  height: 480\n  type: group\n  start: a\n"
      "  onLoad: 'mine = new Vector(9); KOVA.f(1);'\n  onUnload: 'KOVA.f(2);'\n  children:\n"
      "    - {name: nest, type: frame, width: 90, height: 90}\n    - {name: a, bgColor: 4, right: b";
  for (const char* hook : {"onUp", "onClick", "onFocus", "onBlur"}) text += std::string(", ") + hook + ": 'KOVA.f(3);'";
  return text +
         "}\n    - {name: b, left: a, timeout: 4, type: slider, immediate: true, navigate: upDown, "
         "onChange: 'topFrame.LoadPage(\"" +
         other + "\"); KOVA.f(4);'}\n";
}

void buildPages() {
  enterFolder();
  static bool built = false;
  if (std::exchange(built, true)) return;
  for (const auto& [page, other] : {std::pair("one", "two"), std::pair("two", "one")}) {
    const std::string source = pageSource(std::string(other) + ".kpg");
    writeFile(std::string(page) + ".yaml", source.data(), source.size());
    buildPage(std::string(page) + ".yaml", std::string(page) + ".kpg");
  }
}

std::string callOf(Choices& input) { return std::string(input.pick(kObjects)) + input.pick(kCalls) + ";"; }

std::string lineOf(Choices& input) {
  switch (input.byte() % 4) {
    case 0: return input.pick(kWhole);
    case 1: {
      const std::string first = callOf(input);
      const std::string both = first + " " + callOf(input);
      return "KOVA.n = 10; KOVA.f = function (e) { KOVA.e = e; if (KOVA.n > 0) { KOVA.n = KOVA.n - 1; " + both +
             " } };";
    }
    default: return "KOVA.n = 10; " + callOf(input);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  buildPages();
  Choices input(data, size);
  HeadlessDesktop& desktop = playerWithoutPage();
  const LookingObserver observer(desktop.shell.engine, kEventsBetweenLooks, kLookedAt);
  desktop.typeLine("KOVA.f = function (e) { return nil; };");
  desktop.shell.loadPage(input.byte() & 1 ? "one.kpg" : "two.kpg");
  int left = kMostWait;
  for (int actions = 0; !input.isEmpty() && actions < kMostActions; ++actions) {
    const uint8_t action = input.byte();
    if (action >= 0x80) {
      typeStatements(desktop, lineOf(input));
    } else if (action >= 0x60) {
      const int wait = std::min(action - 0x60, left);
      left -= wait;
      desktop.wait(uint32_t(wait));
    } else {
      desktop.key(kKeys[action % std::size(kKeys)]);
      desktop.settle();
    }
  }
  return 0;
}
