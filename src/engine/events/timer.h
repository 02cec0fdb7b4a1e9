// Timers: the only deferred work apart from the redraw queue. Times are hostMilliseconds, unsigned and wrapping.
//
// The armed bit of a one-shot timer stays set when it has fired, so destroying it later calls its callback once more
// to say that it stopped. Whoever makes a timer owns it and ends it by timerDestroy alone, since it may be firing; a
// callback may take any other out of the queue.
#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "engine/base/mortal.h"
#include "engine/base/observer.h"

enum class TimerReason { fired = 1, stopped = 2 };  // a callback throws nothing when it hears that its timer stopped

struct Timer;

// Those that wait, by the time they are due; equal times in the order of arming.
using TimerOrder = std::multimap<uint32_t, Timer*>;

struct Timer : Mortal {
  using Callback = void (*)(Timer* timer, TimerReason reason);

  explicit Timer(Callback c) : callback(c) {}
  virtual TimerIdentity identity() const { return {}; }

  uint32_t timerFlags = 0;
  uint32_t interval = 0;  // milliseconds
  uint32_t due = 0;       // time of the next firing
  Callback callback;
  std::optional<TimerOrder::iterator> place;  // while it waits
  TimerOrder::node_type spare;                // otherwise its place of before, so that arming it again takes no memory
  bool gone = false;                          // destroyed; only its memory is still here
};

inline constexpr uint32_t kTimerArmed = 1;
inline constexpr uint32_t kTimerRepeating = 2;

// The timers of one engine that wait.
class TimerQueue {
 public:
  void start(Timer* timer, uint32_t interval, bool repeat);
  void setInterval(Timer* timer, uint32_t interval);
  void stop(Timer* timer) noexcept;
  void destroy(Timer* timer) noexcept;

  // Fires all that are due at the one moment that is read at the start. A repeating timer of interval 0 is due again at
  // once, so it never ends.
  void fire();

  std::optional<uint32_t> nextDue() const;  // nothing when no timer waits
  const TimerOrder& waiting() const { return order; }

 private:
  void unlink(Timer* timer);
  void insert(Timer* timer, uint32_t due);
  void fire(Timer* timer, uint32_t now);
  void afterFiring(Timer* timer, uint32_t now) noexcept;

  TimerOrder order;
};

TimerQueue& currentTimers();  // of the engine that is current on this thread

void timerStart(Timer* timer, uint32_t interval, bool repeat);
void timerSetInterval(Timer* timer, uint32_t interval);  // starts it anew; the repeat bit stays
void timerStop(Timer* timer);
void timerDestroy(Timer* timer);             // stops it if its armed bit is set, and frees it
int32_t timerRemaining(const Timer* timer);  // milliseconds, negative when overdue
bool timerIsListed(const Timer* timer);      // waiting to fire
