// Making and destroying an interpreter.
#include "bob/interp.h"

#include <cstdlib>

#include "bob/bob.h"
#include "bob/compiler.h"
#include "bob/kinds.h"
#include "bob/thread.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kMaxHeap = 0xFFFF * 4;
constexpr uint32_t kMaxStack = 1 << 24;

BobNullStream nullStream;

// Symbols need the symbol table, whose parent is a symbol: nil comes first and is written into it.
void MakeConstants(BobInterp* interp) {
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

void MakeClasses(BobInterp* interp) {
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

BobInterp::~BobInterp() {
  while (scopes && scopes != &scope) bobReleaseScope(scopes);
  compiler.reset();
  std::free(base);
}

BobInterp* bobMakeInterp(uint32_t heapBytes, uint32_t expansionSize, uint32_t stackWords) {
  if (heapBytes > kMaxHeap || stackWords > kMaxStack) return nullptr;
  auto interp = std::make_unique<BobInterp>();
  interp->expansionSize = expansionSize;
  interp->stdinStream = interp->stdoutStream = interp->stderrStream = &nullStream;
  if (!bobMakeHeap(interp.get(), heapBytes, stackWords)) return nullptr;
  bobMakeTypeRecords(interp.get());
  const bool made = bobTry(interp.get(), [&] {
    MakeConstants(interp.get());
    MakeClasses(interp.get());
  });
  return made ? interp.release() : nullptr;
}

void bobDestroyInterp(BobInterp* interp) { delete interp; }

void bobInitCompiler(BobInterp* interp) {
  interp->compiler = std::make_unique<BobCompiler>(interp);
  bobBindFunctions(interp, kBobCompilerFunctions);
}
