#include "bob/heap/raise.h"

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/tracer.h"

namespace {

[[noreturn]] void raise(BobInterp* interp, int code, BobErrorArgument argument) {
  if (interp->tracer) {
    const BobLocal value(interp->locals, argument.value);
    interp->tracer->atError(interp, code, argument);
    argument.value = value;
  }
  if (interp->errorHandler) interp->errorHandler(interp, code, argument);
  throw BobUnwind{code};
}

}  // namespace

void bobRaise(BobInterp* interp, int code) { raise(interp, code, {}); }
void bobRaise(BobInterp* interp, int code, BobValue value) { raise(interp, code, {value, "", 0}); }
void bobRaiseText(BobInterp* interp, int code, const char* text) { raise(interp, code, {kBobNil, text, 0}); }
void bobRaiseNumber(BobInterp* interp, int code, int32_t number) { raise(interp, code, {kBobNil, "", number}); }
