#include "engine/events/timer.h"

#include <functional>

#include "support/pagefixture.h"

namespace {

std::string* heard;

struct NamedTimer : Timer {
  explicit NamedTimer(char n) : Timer(tell), name(n) {}

  static void tell(Timer* timer, TimerReason reason) {
    auto* self = static_cast<NamedTimer*>(timer);
    *heard += self->name;
    *heard += reason == TimerReason::fired ? '!' : '.';
    if (reason == TimerReason::fired && self->onFired) self->onFired();
    if (reason == TimerReason::stopped && self->onStopped) self->onStopped();
  }

  char name;
  std::function<void()> onFired, onStopped;
};

class TimerTest : public PageTest {
 protected:
  TimerTest() { heard = &story; }
  std::string passing(uint32_t milliseconds) {
    story.clear();
    desktop.wait(milliseconds);
    return story;
  }
  std::string story;
};

TEST_F(TimerTest, EqualTimesFireInTheOrderOfArmingAndOneShotsStop) {
  auto *a = new NamedTimer('a'), *b = new NamedTimer('b'), *c = new NamedTimer('c');
  timerStart(b, 5, false);
  timerStart(a, 5, true);
  timerStart(c, 3, false);
  EXPECT_EQ(passing(4), "c!c.");
  EXPECT_EQ(passing(1), "b!b.a!");
  EXPECT_EQ(timerRemaining(a), 5);
  EXPECT_EQ(timerRemaining(b), 0);
  a->onFired = [a] { timerStart(a, 100, true); };  // it is armed anew in any case, and the later insertion wins
  EXPECT_EQ(passing(5), "a!");
  EXPECT_EQ(timerRemaining(a), 100);

  story.clear();
  timerDestroy(b);  // fired long ago, but its armed bit is still set: it stops once more
  timerDestroy(a);
  timerDestroy(c);
  EXPECT_EQ(story, "b.a.c.");
}

TEST_F(TimerTest, ADestroyedTimerIsNeverHeardOfAgain) {
  auto *a = new NamedTimer('a'), *b = new NamedTimer('b'), *c = new NamedTimer('c');
  a->onFired = [&] {
    timerDestroy(a);
    timerDestroy(b);
  };
  c->onStopped = [&] { timerDestroy(c); };  // frees once, though the destruction stops it once more
  timerStart(a, 1, true);
  timerStart(b, 1, true);
  timerStart(c, 1, false);
  EXPECT_EQ(passing(9), "a!a.b.c!c.c.");
}

// Times are compared as they are, so what is due beyond the clock's wrap comes at once, and what was due before it
// comes when the clock is there again.
TEST_F(TimerTest, TheClockMayJumpAndWrap) {
  auto *soon = new NamedTimer('s'), *late = new NamedTimer('l'), *ago = new NamedTimer('a');
  desktop.clock = 0xFFFFFFF0;
  timerStart(soon, 0x20, false);       // due at 0x10
  timerStart(late, 5, false);          // at 0xFFFFFFF5
  timerStart(ago, UINT32_MAX, false);  // a millisecond ago
  EXPECT_EQ(timerRemaining(soon), 0x20);
  EXPECT_EQ(passing(1), "s!s.a!a.");
  EXPECT_EQ(timerRemaining(ago), -2);
  EXPECT_EQ(passing(3), "");
  desktop.clock = 0;  // has wrapped
  EXPECT_EQ(passing(1000), "");
  desktop.clock = 0xFFFFFFFE;  // has jumped
  EXPECT_EQ(passing(1), "l!l.");
  desktop.clock = 5;  // backwards
  timerStart(soon, 0, true);
  soon->onFired = [&] { timerDestroy(soon); };
  EXPECT_EQ(passing(1), "s!s.");
  timerDestroy(late);
  timerDestroy(ago);
}

}  // namespace
