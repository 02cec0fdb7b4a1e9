#include "engine/events/eventtarget.h"

#include <functional>
#include <memory>

#include "engine/events/graveyard.h"
#include "support/pagefixture.h"

namespace {

using Answer = std::function<int(const Event*)>;

struct Hook : EventHandler {
  Hook(uint32_t code, Answer a) : EventHandler(code), answer(std::move(a)) {}
  int fn(const Event* event) override { return answer(event); }
  Answer answer;
};

struct Target : EventTarget {
  explicit Target(EventTarget* parent, Answer a) : EventTarget(parent), answer(std::move(a)) {}
  int handleEvent(const Event* event) override { return answer(event); }
  Answer answer;
};

class TargetTest : public PageTest {
 protected:
  // Notes its name, and answers.
  Answer note(const std::string& name, int result = 0) {
    return [this, name, result](const Event* event) {
      story += name + (event ? " " : "- ");
      return event ? result : 1;
    };
  }
  std::string posting(uint32_t code) {
    story.clear();
    story += eventPostSimple(code, 0, 0) ? "=> 1" : "=> 0";
    return story;
  }
  std::string story;
};

TEST_F(TargetTest, ObserversHearFirstThenTargetsUntilOneConsumesThenTheDefault) {
  Target first(nullptr, note("first")), second(nullptr, note("second", 1)), fallback(nullptr, note("default", 5));
  targetActivate(&second);
  targetActivate(&first);  // to the head
  observerAdd(&second, new Hook(7, note("o2", 1)));
  observerAdd(&first, new Hook(7, note("o1", 1)));
  observerAdd(&first, new Hook(8, note("other")));
  auto* handler = new Hook(7, note("h1"));
  EXPECT_TRUE(handlerAdd(&first, handler));
  EXPECT_FALSE(handlerAdd(&second, handler));  // it is in a list
  Hook same(7, note("same"));
  EXPECT_FALSE(handlerAdd(&first, &same));  // a target takes one for a code
  defaultTargetSet(&fallback);
  EXPECT_EQ(posting(7), "o1 o2 h1 first second => 1");

  EXPECT_TRUE(targetDeactivate(&second));
  EXPECT_FALSE(targetDeactivate(&second));
  EXPECT_EQ(posting(9), "first default => 1");
  story.clear();
  defaultTargetSet(nullptr);
  targetDestroyLists(&first);
  targetDestroyLists(&second);
  EXPECT_EQ(story, "default- first- other- o1- h1- o2- ");
  EXPECT_EQ(posting(7), "=> 0");
}

TEST_F(TargetTest, WalksOutliveWhatTheirHooksTakeAway) {
  auto make = [&](const char* name) { return new Target(nullptr, note(name)); };
  Target *a = make("a"), *b = make("b");
  targetActivate(b);
  targetActivate(a);
  // An observer that empties its own target's lists ends that list's walk; the other target is still reached.
  observerAdd(a, new Hook(7, note("later")));
  observerAdd(a, new Hook(7, [&](const Event* event) {
                if (!event) return 1;
                story += "empties ";
                targetDestroyLists(a);
                return 0;
              }));
  EXPECT_EQ(posting(7), "empties a- later- b => 0");

  // A handler that destroys its target: nobody climbs on from there.
  auto* c = make("c");
  targetActivate(c);
  handlerAdd(c, new Hook(7, [&](const Event* event) {
               if (!event) return 1;
               targetDestroyLists(c);
               c->gone = true;
               bury(std::unique_ptr<Target>(c));
               return 0;
             }));
  EXPECT_EQ(posting(7), "c- => 0");
  targetDestroyLists(b);
  delete a;
  delete b;
}

TEST_F(TargetTest, UnansweredEventsClimbToTheParent) {
  Target top(nullptr, note("top", 1));
  EventTarget middle(&top), bottom(&middle);
  EXPECT_EQ(eventSendSimple(&bottom, 7, 0), 1);
  EXPECT_EQ(bottom.handleEvent(nullptr), 1);
  EXPECT_EQ(story, "top ");
}

TEST_F(TargetTest, ADestroyedDefaultIsAskedNoLonger) {
  Target target(nullptr, note("default", 1));
  defaultTargetSet(&target);
  targetDestroyLists(&target);
  EXPECT_EQ(defaultTarget(), &target);  // only its lists went
  target.gone = true;
  targetDestroyLists(&target);
  EXPECT_EQ(defaultTarget(), nullptr);
}

}  // namespace
