#include "kit/run/bobruntime.h"

#include "bob/tools/disassemble.h"
#include "kit/errors.h"

namespace {
constexpr uint32_t kHeapBytes = 102400, kStackWords = 65536;  // the player's
}

BobRuntime::BobRuntime() : interp(bobMakeInterp(kHeapBytes, 0, kStackWords)) {
  if (!interp) throw KitError("out of memory");
  bobRegisterGlobals(interp);
  bobInitCompiler(interp);
}

void bobListCode(BobInterp* interp, BobValue code) { bobDisassembleAll(interp, code, bobStdout(interp)); }

bool bobListRecords(BobInterp* interp, BobStream* stream) {
  return bobTry(interp, [&] {
    BobValue code;
    while (bobReadValue(bobRootScope(interp), stream, &code) && bobIsA(interp, code, kBobCompiledCode))
      bobListCode(interp, code);
  });
}
