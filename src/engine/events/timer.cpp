#include "engine/events/timer.h"

#include <memory>
#include <utility>

#include "engine/base/watch.h"
#include "engine/events/graveyard.h"
#include "host/host.h"

namespace {
constexpr uint32_t kFiringsToBreath = 4096;
}

void TimerQueue::unlink(Timer* timer) {
  if (!timer->place) return;
  timer->spare = order.extract(*timer->place);
  timer->place.reset();
}

void TimerQueue::insert(Timer* timer, uint32_t due) {
  timer->due = due;
  if (timer->spare) {
    timer->spare.key() = due;
    timer->place = order.insert(std::move(timer->spare));
  } else {
    timer->place = order.emplace(due, timer);
  }
  timer->timerFlags |= kTimerArmed;
}

void TimerQueue::start(Timer* timer, uint32_t interval, bool repeat) {
  if (timer->gone) return;
  unlink(timer);
  timer->interval = interval;
  timer->timerFlags = repeat ? timer->timerFlags | kTimerRepeating : timer->timerFlags & ~kTimerRepeating;
  insert(timer, hostMilliseconds() + interval);
}

void TimerQueue::setInterval(Timer* timer, uint32_t interval) {
  if (timer->gone) return;
  unlink(timer);
  timer->interval = interval;
  insert(timer, hostMilliseconds() + interval);
}

void TimerQueue::stop(Timer* timer) noexcept {
  EngineCall call;
  unlink(timer);
  timer->timerFlags &= ~kTimerArmed;
  timer->callback(timer, TimerReason::stopped);
}

void TimerQueue::destroy(Timer* timer) noexcept {
  EngineCall call;
  if (timer->gone) return;
  timer->gone = true;  // so that its callback can neither arm it again nor destroy it once more
  if (timer->timerFlags & kTimerArmed) stop(timer);
  bury(std::unique_ptr<Timer>(timer));
}

void TimerQueue::fire(Timer* timer, uint32_t now) {
  if (const ObserverReport report; report) report->timerFired(timer->identity());
  struct End {  // which comes however the callback ends
    ~End() { queue.afterFiring(timer, now); }
    TimerQueue& queue;
    Timer* timer;
    uint32_t now;
  } const end{*this, timer, now};
  timer->callback(timer, TimerReason::fired);
}

void TimerQueue::afterFiring(Timer* timer, uint32_t now) noexcept {
  if (timer->gone) return;
  if (timer->timerFlags & kTimerRepeating) {
    unlink(timer);  // its own callback may have armed it; this insertion wins
    insert(timer, now + timer->interval);
  } else {
    timer->callback(timer, TimerReason::stopped);
  }
}

void TimerQueue::fire() {
  EngineCall call;
  if (order.empty()) return;
  const uint32_t now = hostMilliseconds();
  // A repeating timer of interval 0 is due again at once, and the loop doesn't end.
  for (uint32_t fired = 1; !order.empty() && order.begin()->first <= now; ++fired) {
    if (fired % kFiringsToBreath == 0 && !hostBreathe()) return;
    Timer* const timer = order.begin()->second;
    unlink(timer);
    fire(timer, now);
  }
}

std::optional<uint32_t> TimerQueue::nextDue() const {
  return order.empty() ? std::nullopt : std::optional(order.begin()->first);
}

void timerStart(Timer* timer, uint32_t interval, bool repeat) { currentTimers().start(timer, interval, repeat); }
void timerSetInterval(Timer* timer, uint32_t interval) { currentTimers().setInterval(timer, interval); }
void timerStop(Timer* timer) { currentTimers().stop(timer); }
void timerDestroy(Timer* timer) { currentTimers().destroy(timer); }
int32_t timerRemaining(const Timer* timer) { return int32_t(timer->due - hostMilliseconds()); }
bool timerIsListed(const Timer* timer) { return timer->place.has_value(); }
