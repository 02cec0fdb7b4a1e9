#include "kit/run/bobruntime.h"

#include "bob/tools/disassemble.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "kit/errors.h"

BobRuntime::BobRuntime() : interp(bobMakeInterp(kScriptHeapBytes, 0, kScriptStackWords)) {
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
