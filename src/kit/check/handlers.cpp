// Timers and functions for events that stay, or that don't do what they say.
#include <algorithm>
#include <set>

#include "kit/check/checks.h"
#include "kit/check/pagecode.h"

namespace {

constexpr int32_t kScrollLines = 0x4040011;

bool isPath(const BobKnownValue& value) { return value.kind == BobKnownValue::path; }
bool isZero(const BobKnownValue& value) { return value.kind == BobKnownValue::integer && value.number == 0; }

// The last name of a path.
std::string lastName(const std::string& path) { return path.substr(path.rfind('.') + 1); }

class Handlers {
 public:
  Handlers(const PageCode& c, const Find& f) : code(c), find(f) {
    code.eachUse([&](const PageFunction&, const BobCodeUse& use) {
      if (use.kind != BobCodeUse::send) return;
      const bool stopsTimer = use.name == "Clear" || (use.name == "Set" && use.arguments.size() == 1);
      if (stopsTimer && isPath(use.object)) stopped.insert(lastName(use.object.name));
      if (stopsTimer && !isPath(use.object)) stopsUnknown = true;
      if (use.name == "Remove") removes = true;
    });
  }

  void check() {
    for (const auto& function : code.functions()) {
      const std::vector<BobCodeUse>& uses = function->code->uses;
      for (size_t i = 0; i < uses.size(); ++i) {
        if (uses[i].kind != BobCodeUse::send) continue;
        if (uses[i].name == "initialize") checkNewTimer(*function, i);
        if (uses[i].name == "Set") checkSet(*function, uses[i]);
        if (uses[i].name == "Push") checkPush(*function, uses[i]);
        if (uses[i].name == "OnEvent" || uses[i].name == "ObserveEvent") checkHandler(*function, uses[i]);
      }
    }
  }

 private:
  void say(const char* check, const PageFunction& function, uint32_t offset, const std::string& text) const {
    code.say(find, check, function, offset, text);
  }

  // ---- timers

  // Where a value is put that has just been made; empty for nowhere, or nowhere known.
  static std::string storedIn(const std::vector<BobCodeUse>& uses, size_t made) {
    if (made + 1 >= uses.size()) return "";
    const BobCodeUse& next = uses[made + 1];
    const bool stores = next.kind == BobCodeUse::setGlobal || next.kind == BobCodeUse::setMember;
    return stores && next.value.kind == BobKnownValue::made ? next.name : "";
  }

  void checkNewTimer(const PageFunction& function, size_t i) const {
    const BobCodeUse& made = function.code->uses[i];
    const bool isTimer = made.object.kind == BobKnownValue::made && made.object.name == "Timer";
    if (!isTimer || made.arguments.size() < 3 || made.arguments[2].kind != BobKnownValue::truth) return;
    if (isZero(made.arguments[1]))
      return say("zero-timer", function, made.offset, "a repeating timer of interval 0 never starts");
    const std::string name = storedIn(function.code->uses, i);
    checkStopped(function, made.offset, name);
    checkOwnClear(function, made, name);
  }

  void checkSet(const PageFunction& function, const BobCodeUse& use) const {
    if (use.arguments.size() < 2 || use.arguments[1].kind != BobKnownValue::truth) return;
    if (isZero(use.arguments[0]))
      return say("zero-timer", function, use.offset,
                 "a timer that is set to repeat after 0 milliseconds never lets the player go on");
    if (isPath(use.object)) checkStopped(function, use.offset, lastName(use.object.name));
  }

  void checkStopped(const PageFunction& function, uint32_t offset, const std::string& name) const {
    if (!code.isComplete() || stopsUnknown || stopped.contains(name)) return;
    if (name.empty() && !stopped.empty()) return;
    say("endless-timer", function, offset,
        "nothing clears this timer, and it goes on when the page has gone; clear it in onUnload");
  }

  // Of a timer whose own function clears it.
  void checkOwnClear(const PageFunction& function, const BobCodeUse& made, const std::string& name) const {
    if (name.empty() || made.arguments[0].kind != BobKnownValue::function) return;
    bool setsAgain = false;
    const BobCodeUse* clear = nullptr;
    const BobCodeUses& own = function.code->functions[size_t(made.arguments[0].number)];
    for (const BobCodeUse& use : own.uses) {
      if (use.kind != BobCodeUse::send || !isPath(use.object) || lastName(use.object.name) != name) continue;
      setsAgain |= use.name == "Set";
      if (use.name == "Clear") clear = &use;
    }
    if (clear && !setsAgain)
      say("timer-restarts", function, made.offset,
          "a repeating timer starts again after its own function, though that has cleared it; say " + name +
              ".Set(1); " + name + ".Clear(); there");
  }

  // ---- events

  // A vector's Push takes a value.
  void checkPush(const PageFunction& function, const BobCodeUse& use) const {
    const bool isOfPage = isPath(use.object) && (use.object.name.starts_with("widgets.") || use.object.name == "frame");
    if (!use.arguments.empty() || isOfPage || removes || !code.isComplete()) return;
    say("stays-active", function, use.offset,
        "nothing removes this target again, and it gets keys before all pages, also when this one has gone");
  }

  void checkHandler(const PageFunction& function, const BobCodeUse& use) {
    if (!isPath(use.object) || use.arguments.empty()) return;
    const bool isOnEvent = use.name == "OnEvent";
    const char* const again = isOnEvent ? "the target has a function for that event by then, and takes no second one"
                                        : "the target takes another function each time, and calls them all";
    const bool isHookOfWidget =
        !function.around && function.widget && function.hook != "onLoad" && function.hook != "onUnload";
    if (isHookOfWidget) return say("handler-again", function, use.offset, again);
    if (!isOnEvent || use.arguments[0].kind != BobKnownValue::integer || function.around) return;
    if (!handled.emplace(use.object.name, use.arguments[0].number).second)
      say("handler-again", function, use.offset, again);
  }

  const PageCode& code;
  const Find& find;
  std::set<std::string> stopped;  // last names of timers that something clears, or makes end by themselves
  bool stopsUnknown = false, removes = false;
  std::set<std::pair<std::string, int32_t>> handled;  // events of targets
};

bool handlesScrolling(const PageCode& code) {
  bool handles = false;
  code.eachUse([&](const PageFunction&, const BobCodeUse& use) {
    const bool isHandler = use.kind == BobCodeUse::send && use.name == "OnEvent" && !use.arguments.empty();
    const auto isOther = [](const BobKnownValue& id) {
      return id.kind == BobKnownValue::integer && id.number != kScrollLines;
    };
    if (isHandler && !isOther(use.arguments[0])) handles = true;
  });
  return handles;
}

// What has the focus and no selection scrolls.
void checkScrolling(const CheckedPage& page, const PageCode& code, const Find& find) {
  if (!code.isComplete() || handlesScrolling(code)) return;
  for (const CheckedWidget& widget : page.widgets) {
    if (widget.type != "textContainer" || widget.number("selectedLine").value_or(0) > 0) continue;
    const bool isStart = !widget.name.empty() && widget.name == page.root().text("start");
    if (isStart || widget.has("left") || widget.has("right"))
      find("endless-scroll", widget.place(),
           widget.label + " has no selection, and the player scrolls it on without an end, up and down");
  }
}

}  // namespace

void checkHandlers(const CheckedPage& page, const PageCode& code, const Find& find) {
  Handlers(code, find).check();
  checkScrolling(page, code, find);
}
