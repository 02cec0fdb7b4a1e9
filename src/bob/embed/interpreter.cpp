#include "bob/embed/interpreter.h"

#include "bob/compile/compiler.h"
#include "bob/heap/collector.h"
#include "bob/heap/heap.h"
#include "bob/heap/stack.h"
#include "bob/lib/compilerglobals.h"
#include "bob/lib/fileclass.h"
#include "bob/lib/methodclass.h"
#include "bob/lib/numberclasses.h"
#include "bob/lib/objectclass.h"
#include "bob/lib/stringclasses.h"
#include "bob/lib/vectorclass.h"
#include "bob/model/kinds.h"
#include "bob/model/properties.h"
#include "bob/model/scopes.h"
#include "bob/model/symbols.h"
#include "bob/model/types.h"
#include "bob/model/values.h"
#include "bob/run/calls.h"
#include "bob/run/report.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kMaxHeap = 0xFFFF * 4;
constexpr uint32_t kMaxStack = 1 << 24;

// Symbols need the symbol table, whose parent is a symbol: nil comes first and is written into it.
void makeConstants(BobInterp* interp) {
  interp->symbolTable = bobAllocate(interp, 16);
  uint32_t* table = interp->words(interp->symbolTable);
  table[0] = kBobObject;
  table[kCount] = 0;
  bobMakeSymbol(interp, "nil", bobHashBytes("nil"));
  table[kParent] = table[kProperties] = kBobNil;
  bobAddProperty(interp, interp->symbolTable, kBobNil, kBobNil);

  const BobValue root = bobMakeObject(interp, kBobNil);
  interp->rootScope = {interp, root, nullptr};
  interp->scope = {interp, root, &interp->rootScope};
  interp->scopes = &interp->scope;
  bobSetGlobal(&interp->scope, "nil", kBobNil);
  bobIntern(interp, "true");
  bobSetGlobal(&interp->scope, "true", kBobTrue);
  bobSetGlobal(&interp->scope, "false", kBobFalse);
}

void makeClasses(BobInterp* interp) {
  bobInitObjectClass(interp);
  bobMakeTypeKind(interp);
  bobInitMethodClass(interp);
  bobInitVectorClass(interp);
  bobInitSymbolClass(interp);
  bobInitStringClass(interp);
  bobInitIntegerClass(interp);
  bobInitFloatClass(interp);
  // Kinds without members.
  for (BobType type : {kBobCObject, kBobCMethod, kBobProperty, kBobCompiledCode, kBobEnvironment, kBobStackEnvironment,
                       kBobMovedEnvironment})
    bobMakeValueClass(interp, type, nullptr, nullptr);
  bobInitFileKind(interp);
}

}  // namespace

BobInterp* bobMakeInterp(uint32_t heapBytes, uint32_t /*expansionSize*/, uint32_t stackWords) {
  if (heapBytes > kMaxHeap || stackWords > kMaxStack) return nullptr;
  auto interp = std::make_unique<BobInterp>();
  interp->errorHandler = bobStandardErrorHandler;
  if (!bobMakeHeap(interp.get(), heapBytes, stackWords)) return nullptr;
  bobMakeTypeRecords(interp.get());
  const bool made = bobTry(interp.get(), [&] {
    makeConstants(interp.get());
    makeClasses(interp.get());
  });
  return made ? interp.release() : nullptr;
}

void bobDestroyInterp(BobInterp* interp) { delete interp; }

void bobInitCompiler(BobInterp* interp) {
  interp->compiler = {new BobCompiler(interp), [](BobCompiler* compiler) { delete compiler; }};
  bobRegisterCompilerGlobals(interp);
}

bool bobHasCompiler(const BobInterp* interp) { return interp->compiler != nullptr; }

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
void bobRestOften(BobInterp* interp, uint32_t steps) { interp->stepsToRest = interp->stepsBetweenRests = steps; }
void bobSetOpenFile(BobInterp* interp, std::unique_ptr<BobStream> (*open)(const char* path, const char* mode)) {
  interp->openFile = open;
}
void bobSetErrorHandler(BobInterp* interp, BobErrorHandler handler) { interp->errorHandler = handler; }

void bobKeepOnStack(BobInterp* interp, BobValue value) {
  bobCheckStack(interp, 1);
  bobPush(interp, value);
}

BobMemory bobMemory(const BobInterp* interp) {
  return {interp->newSpace.free - interp->newSpace.base,
          interp->arenaFree,
          interp->totalMemory,
          interp->handles.size(),
          interp->newSpace.top - interp->newSpace.base,
          uint32_t(interp->stackTop - interp->stackBase),
          uint32_t(interp->stackTop - interp->sp),
          interp->collections};
}

void bobCollectAlways(BobInterp* interp) {
  interp->collectAlways = true;
  bobCollect(interp);  // lets the next allocation take the slow path
}

void bobFailAllocation(BobInterp* interp, int64_t count) {
  interp->failAllocation = count;
  interp->allocationLimit = 0;
}

bool bobHasFailed(const BobInterp* interp) { return interp->failAllocation < 0; }
