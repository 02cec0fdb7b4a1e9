// The class Timer.
//
// The callback of a timer lies in two places. The wrapper has it in its parent word, which nothing else uses, so that
// a timer at rest keeps it only as long as a script can still start it. While the timer waits or fires, it has the
// callback itself, as a root of the collector: it then runs on without its wrapper.
#include "engine/base/watch.h"
#include "engine/scriptbindings/bindings.h"

namespace {

bool isUnderWay(const ScriptTimer* timer) { return timer->firing || timerIsListed(timer); }

void destroyTimer(ScriptTimer* timer) {
  if (timer->gone) return;
  timer->handle.release();
  currentScripts().timers.erase(timer->listed);
  timer->hasWrapper = true;  // stopping it says so to its callback, which would be back here
  timerDestroy(timer);
}

void fired(ScriptTimer* timer) {
  BobInterp* interp = currentScripts().interp;
  ++timer->firing;
  struct End {
    ~End() { --timer->firing; }
    ScriptTimer* timer;
  } const end{timer};
  ScriptWatch watch([&] { return ScriptRun{ScriptKind::timer, 0, "", 0, bobFunctionName(interp, timer->callback)}; });
  watch.ended(bobTry(interp, [&] { bobCall(bobRootScope(interp), timer->callback, {}); }));
}

void timerCallback(Timer* base, TimerReason reason) {
  auto* timer = static_cast<ScriptTimer*>(base);
  if (reason == TimerReason::fired) {
    fired(timer);
  } else if (!timer->hasWrapper) {
    destroyTimer(timer);
  }
}

void releaseTimer(BobInterp* interp, BobValue wrapper) {
  auto* timer = static_cast<ScriptTimer*>(bobNativePointer(interp, wrapper));
  if (!timer) return;
  if (!isUnderWay(timer)) return destroyTimer(timer);
  timer->hasWrapper = false;
  timer->handle.release();
}

// The timer of a value, about to be started: it has its callback again.
ScriptTimer* timerToStart(BobInterp* interp, BobValue self) {
  if (!bobIsOfKind(interp, self, currentScripts().timerKind)) return nullptr;
  auto* timer = static_cast<ScriptTimer*>(bobNativePointer(interp, self));
  if (timer) timer->callback = bobParentOf(interp, self);
  return timer;
}

BobValue initialize(BobInterp* interp) {
  BobValue self, callback;
  int32_t interval = 0, repeat = 0;
  bobParse(interp, "V=*V|iB", currentScripts().timerKind, &self, &callback, &interval, &repeat);
  releaseTimer(interp, self);  // one that it had before
  struct End {
    void operator()(ScriptTimer* timer) const { destroyTimer(timer); }
  };
  std::list<ScriptTimer*> entry(1);
  std::unique_ptr<ScriptTimer, End> timer(new ScriptTimer(timerCallback));
  scriptEnlist(currentScripts().timers, entry, timer.get());
  timer->callback = callback;
  bobSetParent(interp, self, callback);
  if (interval != 0) timerStart(timer.get(), uint32_t(interval), repeat);
  timer->handle.make(interp, timer.get());
  bobHandleOf(interp, self) = timer.release()->handle.number();
  return self;
}

BobValue set(BobInterp* interp) {
  BobValue self;
  int32_t interval, repeat = 0;
  bobParse(interp, "V=*i|B", currentScripts().timerKind, &self, &interval, &repeat);
  ScriptTimer* timer = timerToStart(interp, self);
  if (!timer) return kBobFalse;
  timerStart(timer, uint32_t(interval), repeat);
  return kBobTrue;
}

BobValue clear(BobInterp* interp) {
  void* pointer;
  bobParse(interp, "P=*", currentScripts().timerKind, &pointer);
  if (!pointer) return kBobFalse;
  timerStop(static_cast<ScriptTimer*>(pointer));
  return kBobTrue;
}

BobValue getTimeRemaining(BobInterp* interp, BobValue self) {
  if (!bobIsOfKind(interp, self, currentScripts().timerKind)) return kBobNil;
  const auto* timer = static_cast<const ScriptTimer*>(bobNativePointer(interp, self));
  return timer ? bobMakeInteger(interp, timerRemaining(timer)) : kBobNil;
}

void setTimeRemaining(BobInterp* interp, BobValue self, BobValue value) {
  if (!bobIsInteger(interp, value)) return scriptComplain(kExpectingInteger);
  if (ScriptTimer* timer = timerToStart(interp, self))
    timerSetInterval(timer, uint32_t(bobIntegerValue(interp, value)));
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize},
    {"Set", set},
    {"Clear", clear},
    {nullptr, nullptr},
};

constexpr BobPropertyRow kProperties[] = {
    {"timeRemaining", getTimeRemaining, setTimeRemaining},
    {nullptr, nullptr, nullptr},
};

}  // namespace

bool scriptDefineTimer(ScriptRuntime& runtime) {
  runtime.timerKind = bobMakeKind(runtime.interp, 0, "Timer", kMethods, kProperties);
  if (runtime.timerKind) bobSetFinalizer(runtime.interp, runtime.timerKind, releaseTimer);
  return runtime.timerKind != 0;
}

void scriptCopyTimerRoots(ScriptRuntime& runtime) {
  for (ScriptTimer* timer : runtime.timers)
    timer->callback = isUnderWay(timer) ? bobCopyValue(runtime.interp, timer->callback) : kBobNil;
}

void scriptDestroyTimers(ScriptRuntime& runtime) {
  while (!runtime.timers.empty()) destroyTimer(runtime.timers.front());
}
