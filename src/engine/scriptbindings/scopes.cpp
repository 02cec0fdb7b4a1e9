// Frames in the language: their scopes, what a page publishes there, and running its scripts.
#include "engine/core.h"
#include "engine/frame.h"
#include "engine/graveyard.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"

namespace {

BobScope* scopeAround(const Frame* frame) {
  return frame->frame ? frame->frame->scriptEnv->scope : bobRootScope(scriptRuntime->interp);
}

void bindOwnNames(BobScope* scope, Frame* frame) {
  bobSetGlobal(scope, "parent", frame->frame ? bobScopeObject(scopeAround(frame)) : kBobNil);
  bobSetGlobal(scope, "frame", scriptWrapTarget(bobScopeInterp(scope), scriptRuntime->frameKind, frame));
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
  for (const TextStyleNode* node = frame->textStyles; node; node = node->next) {
    const BobLocal wrapper(interp, scriptWrapStyle(interp, &node->style));
    const BobValue name = bobIntern(interp, node->name ? node->name : "default");
    bobSetProperty(interp, object, name, wrapper);
  }
  return object;
}

}  // namespace

ScriptScope::~ScriptScope() {
  if (scriptRuntime) bobReleaseScope(scope);
}

std::unique_ptr<ScriptScope> scriptScopeCreate(Frame* frame) {
  BobInterp* interp = scriptRuntime->interp;
  std::unique_ptr<ScriptScope> result;
  const bool made = bobTry(interp, [&] {
    result = std::make_unique<ScriptScope>(bobMakeScope(scopeAround(frame)));
    if (!frame->frame)
      bobSetGlobal(bobRootScope(interp), "topFrame", scriptWrapTarget(interp, scriptRuntime->frameKind, frame));
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

int scriptDetach(Frame* frame) {
  BobScope* scope = frame->scriptEnv->scope;
  BobInterp* interp = bobScopeInterp(scope);
  return bobTry(interp, [&] {
    bobClearProperties(interp, bobScopeObject(scope));
    bindOwnNames(scope, frame);
  });
}

int scriptLoadFile(Frame* frame, const char* path) {
  EngineCall call;
  BobScope* scope = frame->scriptEnv->scope;
  bool loaded = false;
  return bobTry(bobScopeInterp(scope), [&] { loaded = bobLoadObjectFile(scope, path); }) && loaded;
}

int scriptRun(Frame* frame, const uint8_t* bytes, uint32_t length) {
  EngineCall call;
  BobStringInput stream({reinterpret_cast<const char*>(bytes), length});
  return bobLoadObjectStream(frame->scriptEnv->scope, &stream);
}

int scriptLoadStartupFile(const char* path) {
  EngineCall call;
  if (!scriptRuntime) return 0;
  bool loaded = false;
  return bobTry(scriptRuntime->interp,
                [&] { loaded = bobLoadObjectFile(bobRootScope(scriptRuntime->interp), path); }) &&
         loaded;
}

void consoleEvaluate(Frame* frame, const char* text, uint32_t length) {
  EngineCall call;
  if (!frame || !scriptRuntime || !bobHasCompiler(scriptRuntime->interp)) return;
  bobConsoleEvaluate(frame->scriptEnv->scope, {text, length});
}
