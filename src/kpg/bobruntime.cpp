#include "kpg/bobruntime.h"

#include "kpg/errors.h"

namespace {
constexpr uint32_t kHeapBytes = 102400, kStackWords = 65536;  // the player's
}

BobRuntime::BobRuntime() : interp(bobMakeInterp(kHeapBytes, 0, kStackWords)) {
  if (!interp) throw CommandError("out of memory");
  bobRegisterGlobals(interp);
  bobInitCompiler(interp);
}

void bobListCode(BobInterp* interp, BobValue code) {
  using namespace BobLayout;
  bobDisassemble(interp, code, interp->stdoutStream);
  const uint32_t* w = interp->words(code);
  for (uint32_t i = 1; i < bobCodeCount(w[kCodeCount]); ++i)
    if (interp->isA(w[kCodeElements + i], kBobCompiledCode)) bobListCode(interp, w[kCodeElements + i]);
}

bool bobListRecords(BobInterp* interp, BobStream* stream) {
  return bobTry(interp, [&] {
    BobValue code;
    while (bobReadValue(&interp->rootScope, stream, &code) && interp->isA(code, kBobCompiledCode))
      bobListCode(interp, code);
  });
}
