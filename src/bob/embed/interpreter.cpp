#include "bob/embed/interpreter.h"

#include "bob/interp.h"
#include "bob/vm.h"

bool bobHasCompiler(const BobInterp* interp) { return interp->compiler != nullptr; }

BobScope* bobRootScope(BobInterp* interp) { return &interp->rootScope; }
BobScope* bobCurrentScope(BobInterp* interp) { return &interp->scope; }
BobInterp* bobScopeInterp(const BobScope* scope) { return scope->interp; }
BobValue bobScopeObject(const BobScope* scope) { return scope->object; }

void bobSetStdin(BobInterp* interp, BobStream* stream) { interp->stdinStream = stream; }
void bobSetStdout(BobInterp* interp, BobStream* stream) { interp->stdoutStream = stream; }
void bobSetStderr(BobInterp* interp, BobStream* stream) { interp->stderrStream = stream; }
BobStream* bobStdout(const BobInterp* interp) { return interp->stdoutStream; }
BobStream* bobStderr(const BobInterp* interp) { return interp->stderrStream; }

void bobSetGcHook(BobInterp* interp, void (*hook)(BobInterp*, void* data), void* data) {
  interp->gcHook = hook;
  interp->gcHookData = data;
}
void bobSetRest(BobInterp* interp, void (*rest)(BobInterp*)) { interp->rest = rest; }
void bobSetOpenFile(BobInterp* interp, std::unique_ptr<BobStream> (*open)(const char* path, const char* mode)) {
  interp->openFile = open;
}
void bobSetErrorHandler(BobInterp* interp, BobErrorHandler handler) { interp->errorHandler = handler; }

BobValue bobObjectClass(const BobInterp* interp) { return interp->objectClass; }

void bobKeepOnStack(BobInterp* interp, BobValue value) {
  bobCheckRoom(interp, 1);
  bobPush(interp, value);
}

BobMemory bobMemory(const BobInterp* interp) {
  return {interp->newSpace.free - interp->newSpace.base, interp->arenaFree, interp->totalMemory,
          interp->handles.size()};
}
