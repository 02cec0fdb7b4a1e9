// The class EventTarget, and the delivery of events to script functions.
#include "engine/base/watch.h"
#include "engine/events/graveyard.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"

namespace {

void destroyTarget(ScriptTarget* target) {
  if (target->gone) return;
  target->gone = true;
  target->scriptHandle.release();
  targetDestroyLists(target);
  currentScripts().targets.erase(target->listed);
  bury(std::unique_ptr<ScriptTarget>(target));
}

ScriptTarget* scriptTargetOf(BobInterp* interp, BobValue wrapper) {
  return dynamic_cast<ScriptTarget*>(static_cast<EventTarget*>(bobNativePointer(interp, wrapper)));
}

BobValue initialize(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", currentScripts().targetKind, &self);
  scriptReleaseTarget(interp, self);  // one that it had before
  struct End {
    void operator()(ScriptTarget* target) const { destroyTarget(target); }
  };
  std::list<ScriptTarget*> entry(1);
  std::unique_ptr<ScriptTarget, End> target(new ScriptTarget(nullptr));
  scriptEnlist(currentScripts().targets, entry, target.get());
  target->scriptHandle.make(interp, static_cast<EventTarget*>(target.get()));
  bobHandleOf(interp, self) = target.release()->scriptHandle.number();
  return self;
}

std::unique_ptr<ScriptHandler> newHandler(int32_t code, BobValue callback) {
  auto handler = std::make_unique<ScriptHandler>(uint32_t(code));
  handler->callback = callback;
  currentScripts().handlers.push_front(handler.get());
  handler->place = currentScripts().handlers.begin();
  return handler;
}

BobValue addHook(BobInterp* interp, bool (*add)(EventTarget*, EventHandler*)) {
  void* pointer;
  int32_t code;
  BobValue callback;
  bobParse(interp, "P=*iV", currentScripts().targetKind, &pointer, &code, &callback);
  if (!pointer) return kBobFalse;
  std::unique_ptr<ScriptHandler> handler = newHandler(code, callback);
  handler->target = static_cast<EventTarget*>(pointer)->id;
  handler->kind = add == observerAdd ? ScriptKind::observer : ScriptKind::handler;
  if (add(static_cast<EventTarget*>(pointer), handler.get())) {
    handler.release();  // the target's now
  } else {
    handler->fn(nullptr);
  }
  return kBobTrue;  // whether it was taken or refused
}

BobValue observeEvent(BobInterp* interp) { return addHook(interp, observerAdd); }
BobValue onEvent(BobInterp* interp) { return addHook(interp, handlerAdd); }

BobValue changeActive(BobInterp* interp, bool (*change)(EventTarget*)) {
  void* pointer;
  bobParse(interp, "P=*", currentScripts().targetKind, &pointer);
  return bobBoolean(pointer && change(static_cast<EventTarget*>(pointer)));
}

BobValue push(BobInterp* interp) { return changeActive(interp, targetActivate); }
BobValue remove(BobInterp* interp) { return changeActive(interp, targetDeactivate); }

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize}, {"ObserveEvent", observeEvent},
    {"OnEvent", onEvent},       {"Push", push},
    {"Remove", remove},         {nullptr, nullptr},
};

}  // namespace

void scriptReleaseTarget(BobInterp* interp, BobValue wrapper) {
  ScriptTarget* target = scriptTargetOf(interp, wrapper);
  if (!target) return;
  if (target != defaultTarget() && !(target->targetFlags & kTargetActive)) return destroyTarget(target);
  target->hasWrapper = false;
  target->scriptHandle.release();
}

int ScriptTarget::handleEvent(const Event* event) {
  if (event) return 0;
  if (!hasWrapper) destroyTarget(this);
  return 1;
}

int ScriptHandler::fn(const Event* event) {
  if (!event) {
    currentScripts().handlers.erase(place);
    return 1;
  }
  BobInterp* interp = currentScripts().interp;
  BobValue result = kBobNil;
  if (observerListens()) return 0;
  ScriptWatch watch([&] { return ScriptRun{kind, target, "", code, bobFunctionName(interp, callback)}; });
  watch.ended(bobTry(interp, [&] {
    const BobValue wrapper = scriptWrapEvent(interp, *event);  // before the callback is read, which it can move
    result = bobCall(bobRootScope(interp), callback, {wrapper});
  }));
  return result != kBobNil;
}

bool scriptDefineTarget(ScriptRuntime& runtime) {
  runtime.targetKind = bobMakeKind(runtime.interp, 0, "EventTarget", kMethods, nullptr);
  if (runtime.targetKind) bobSetFinalizer(runtime.interp, runtime.targetKind, scriptReleaseTarget);
  return runtime.targetKind != 0;
}

void scriptCopyHandlerRoots(ScriptRuntime& runtime) {
  for (ScriptHandler* handler : runtime.handlers) handler->callback = bobCopyValue(runtime.interp, handler->callback);
}

void scriptDestroyTargets(ScriptRuntime& runtime) {
  while (!runtime.targets.empty()) destroyTarget(runtime.targets.front());
}
