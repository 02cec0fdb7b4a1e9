#include "engine/timer.h"

#include "engine/graveyard.h"
#include "host/host.h"

namespace {

constexpr uint32_t kFiringsToBreath = 4096;

Timer* timers = nullptr;  // sorted by due; equal times in the order of arming

void unlink(Timer* timer) {
  for (Timer** link = &timers; *link; link = &(*link)->next) {
    if (*link != timer) continue;
    *link = timer->next;
    timer->next = nullptr;
    return;
  }
}

void insert(Timer* timer, uint32_t due) {
  timer->due = due;
  Timer** link = &timers;
  while (*link && (*link)->due <= due) link = &(*link)->next;
  timer->next = *link;
  *link = timer;
  timer->timerFlags |= kTimerArmed;
}

void fire(Timer* timer, uint32_t now) {
  timer->callback(timer, TimerReason::fired);
  if (timer->gone) return;
  if (timer->timerFlags & kTimerRepeating) {
    unlink(timer);  // its own callback may have armed it; this insertion wins
    insert(timer, now + timer->interval);
  } else {
    timer->callback(timer, TimerReason::stopped);
  }
}

}  // namespace

void timerStart(Timer* timer, uint32_t interval, bool repeat) {
  if (timer->gone) return;
  unlink(timer);
  timer->interval = interval;
  timer->timerFlags = repeat ? timer->timerFlags | kTimerRepeating : timer->timerFlags & ~kTimerRepeating;
  insert(timer, hostMilliseconds() + interval);
}

void timerSetInterval(Timer* timer, uint32_t interval) {
  if (timer->gone) return;
  unlink(timer);
  timer->interval = interval;
  insert(timer, hostMilliseconds() + interval);
}

void timerStop(Timer* timer) {
  EngineCall call;
  unlink(timer);
  timer->timerFlags &= ~kTimerArmed;
  timer->callback(timer, TimerReason::stopped);
}

void timerDestroy(Timer* timer) {
  EngineCall call;
  if (timer->gone) return;
  timer->gone = true;  // so that its callback can neither arm it again nor destroy it once more
  if (timer->timerFlags & kTimerArmed) timerStop(timer);
  bury(timer);
}

int32_t timerRemaining(const Timer* timer) { return int32_t(timer->due - hostMilliseconds()); }

bool timerIsListed(const Timer* timer) {
  for (const Timer* t = timers; t; t = t->next)
    if (t == timer) return true;
  return false;
}

void timersFire() {
  EngineCall call;
  if (!timers) return;
  const uint32_t now = hostMilliseconds();
  // A repeating timer of interval 0 is due again at once, and the loop doesn't end.
  for (uint32_t fired = 1; timers && timers->due <= now; ++fired) {
    if (fired % kFiringsToBreath == 0) hostBreathe();
    Timer* timer = timers;
    timers = timer->next;
    timer->next = nullptr;
    fire(timer, now);
  }
}

bool timersNextDue(uint32_t* due) {
  if (timers) *due = timers->due;
  return timers != nullptr;
}

void timersReset() { timers = nullptr; }
