// Frames in the language: their scopes, what a page publishes there, and running its scripts.
#include <exception>

#include "engine/base/watch.h"
#include "engine/events/graveyard.h"
#include "engine/page/frame.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"

namespace {

BobScope* scopeAround(const Frame* frame) {
  const Frame* around = frameOf(frame);
  return around ? around->scriptEnv->scope : bobRootScope(currentScripts().interp);
}

void bindOwnNames(BobScope* scope, Frame* frame) {
  bobSetGlobal(scope, "parent", frame->owner ? bobScopeObject(scopeAround(frame)) : kBobNil);
  bobSetGlobal(scope, "frame", scriptWrapTarget(bobScopeInterp(scope), currentScripts().frameKind, frame));
}

// Of two widgets of one name, scripts see the last.
BobValue widgetsObject(BobInterp* interp, const Frame* frame) {
  const BobLocal object(interp, bobMakeObject(interp, bobObjectClass(interp)));
  for (Widget* widget = frame->widgets; widget; widget = widget->nextInFrame) {
    if (!widget->name) continue;
    const BobLocal wrapper(interp, scriptWrapWidget(interp, widget));
    const BobValue name = bobIntern(interp, widget->name);
    bobSetProperty(interp, object, name, wrapper);
  }
  return object;
}

// Of two styles of one name, too.
BobValue stylesObject(BobInterp* interp, const Frame* frame) {
  const BobLocal object(interp, bobMakeObject(interp, bobObjectClass(interp)));
  for (const NamedStyle& named : frame->textStyles) {
    const BobLocal wrapper(interp, scriptWrapStyle(interp, &named.style));
    const BobValue name = bobIntern(interp, named.name);
    bobSetProperty(interp, object, name, wrapper);
  }
  return object;
}

}  // namespace

std::unique_ptr<ScriptScope> scriptScopeCreate(Frame* frame) {
  BobInterp* interp = currentScripts().interp;
  std::unique_ptr<ScriptScope> result;
  const bool made = bobTry(interp, [&] {
    result.reset(new ScriptScope(bobMakeScope(scopeAround(frame))));  // which finds its own memory first
    if (!frame->owner)
      bobSetGlobal(bobRootScope(interp), "topFrame", scriptWrapTarget(interp, currentScripts().frameKind, frame));
    bindOwnNames(result->scope, frame);
  });
  return made ? std::move(result) : nullptr;
}

int scriptAttach(Frame* frame) {
  BobScope* scope = frame->scriptEnv->scope;
  BobInterp* interp = bobScopeInterp(scope);
  return bobTry(interp, [&] {
    const BobLocal widgets(interp, widgetsObject(interp, frame));
    const BobLocal styles(interp, stylesObject(interp, frame));
    bobSetGlobal(scope, "widgets", widgets);
    bobSetGlobal(scope, "textStyles", styles);
  });
}

int scriptDetach(Frame* frame) noexcept try {
  BobScope* scope = frame->scriptEnv->scope;
  BobInterp* interp = bobScopeInterp(scope);
  return bobTry(interp, [&] {
    bobClearProperties(interp, bobScopeObject(scope));
    bindOwnNames(scope, frame);
  });
} catch (const std::exception&) {
  return 0;
}

int scriptLoadFile(Frame* frame, const char* path) {
  EngineCall call;
  BobScope* scope = frame->scriptEnv->scope;
  bool loaded = false;
  if (observerListens()) return 0;
  ScriptWatch watch([&] { return ScriptRun{ScriptKind::file, frame->id, "", 0, path}; });
  currentScripts().opensPageFile = true;
  loaded = bobTry(bobScopeInterp(scope), [&] { loaded = bobLoadObjectFile(scope, path); }) && loaded;
  watch.ended(loaded);
  return loaded;
}

int scriptRun(Frame* frame, const uint8_t* bytes, uint32_t length) {
  EngineCall call;
  BobStringInput stream({reinterpret_cast<const char*>(bytes), length});
  return bobLoadObjectStream(frame->scriptEnv->scope, &stream);
}

int scriptLoadStartupFile(const char* path) {
  EngineCall call;
  if (!scriptInterp()) return 0;
  bool loaded = false;
  return bobTry(currentScripts().interp,
                [&] { loaded = bobLoadObjectFile(bobRootScope(currentScripts().interp), path); }) &&
         loaded;
}

void consoleEvaluate(Frame* frame, const char* text, uint32_t length) {
  EngineCall call;
  if (!frame || !scriptInterp() || !bobHasCompiler(currentScripts().interp) || observerListens()) return;
  ScriptWatch watch([&] { return ScriptRun{ScriptKind::console, frame->id, "", 0, {text, length}}; });
  watch.ended(bobConsoleEvaluate(frame->scriptEnv->scope, {text, length}));
}
