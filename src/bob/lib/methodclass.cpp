#include "bob/lib/methodclass.h"

#include "bob/base/stream.h"
#include "bob/heap/stack.h"
#include "bob/lib/fileclass.h"
#include "bob/lib/spread.h"
#include "bob/model/kinds.h"
#include "bob/model/print.h"
#include "bob/model/signature.h"
#include "bob/run/invoke.h"
#include "bob/tools/disassemble.h"

using namespace BobLayout;

namespace {

BobValue decode(BobInterp* interp) {
  BobValue self, file = kBobNil;
  bobParse(interp, "V=*|V=", kBobMethod, &self, interp->fileKind, &file);
  BobStream* stream = bobOutputFor(interp, file);
  if (!stream) return kBobTrue;
  if (interp->isA(self, kBobCMethod)) {
    bobPrint(interp, self, stream);
    bobPutText(stream, "\n");
  } else {
    bobDisassemble(interp, interp->words(self)[kMethodCode], stream);
  }
  return kBobTrue;
}

// fn.Apply(a, b, ..., vector): the arguments take the slots of this and _next of the function called.
BobValue apply(BobInterp* interp) {
  bobCheckArgumentCount(interp, 3);
  uint32_t* const argv = interp->argv;
  const int argc = interp->argc;
  if (interp->recordOf(argv[-1])->base != kBobMethod) bobRaise(interp, kBobWrongType, argv[-1]);
  const BobValue vector = bobLastVectorArgument(interp, argv, argc);
  bobCheckStack(interp, uint32_t(argc));
  bobPush(interp, argv[-1]);
  for (int i = 3; i < argc; ++i) bobPush(interp, argv[-i]);
  const int elements = bobPushElements(interp, vector);
  return bobRunCall(interp, argc - 3 + elements);
}

constexpr BobMethodRow kMethods[] = {{"Decode", decode}, {"Apply", apply}, {nullptr, nullptr}};

}  // namespace

void bobInitMethodClass(BobInterp* interp) {
  interp->methodClass = bobMakeValueClass(interp, kBobMethod, kMethods, nullptr);
}
