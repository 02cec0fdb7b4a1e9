#include "kit/run/bobruntime.h"

#include <algorithm>
#include <iterator>

#include "bob/tools/objectformat.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "kit/errors.h"

BobRuntime::BobRuntime() : owned(bobMakeInterp(kScriptHeapBytes, 0, kScriptStackWords), bobDestroyInterp) {
  if (!interp) throw KitError("out of memory");
  bobRegisterGlobals(interp);
  bobInitCompiler(interp);
}

bool isObjectFile(const std::vector<uint8_t>& bytes) {
  return bytes.size() >= sizeof kBobMagic && std::equal(std::begin(kBobMagic), std::end(kBobMagic), bytes.begin());
}

void bobListCode(BobInterp* interp, BobValue code, const BobListingNote& note) {
  bobDisassembleAll(interp, code, bobStdout(interp), note);
}

bool bobListRecords(BobInterp* interp, BobStream* stream, const BobListingNote& note) {
  return bobTry(interp, [&] {
    BobValue code;
    while (bobReadValue(bobRootScope(interp), stream, &code) && bobIsA(interp, code, kBobCompiledCode))
      bobListCode(interp, code, note);
  });
}
