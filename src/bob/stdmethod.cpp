// The methods of Method.
#include "bob/bob.h"
#include "bob/tools/disassemble.h"

using namespace BobLayout;

namespace {

BobValue Decode(BobInterp* interp) {
  BobValue self, file = kBobNil;
  bobParse(interp, "V=*|V=", kBobMethod, &self, interp->fileKind, &file);
  BobStream* stream = file == kBobNil ? interp->stdoutStream : bobFileStream(interp, file);
  if (!stream) return kBobTrue;
  if (interp->isA(self, kBobCMethod)) {
    bobPrint(interp, self, stream);
    bobPutText(stream, "\n");
  } else {
    bobDisassemble(interp, interp->words(self)[kMethodCode], stream);
  }
  return kBobTrue;
}

constexpr BobMethodRow kMethods[] = {{"Decode", Decode}, {"Apply", bobApply}, {nullptr, nullptr}};

}  // namespace

void bobInitMethodClass(BobInterp* interp) {
  interp->methodClass = bobMakeValueClass(interp, kBobMethod, kMethods, nullptr);
}
