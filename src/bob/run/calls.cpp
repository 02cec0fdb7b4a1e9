#include "bob/run/calls.h"

#include "bob/heap/stack.h"
#include "bob/model/scopes.h"
#include "bob/model/symbols.h"
#include "bob/run/frames.h"
#include "bob/run/invoke.h"

namespace {

void pushAll(BobInterp* interp, std::initializer_list<BobValue> values) {
  for (BobValue value : values) bobPush(interp, value);
}

}  // namespace

BobValue bobCall(BobScope* scope, BobValue function, std::initializer_list<BobValue> arguments) {
  BobInterp* interp = scope->interp;
  bobCheckStack(interp, uint32_t(arguments.size()) + 3);
  pushAll(interp, {function, scope->object, scope->object});
  pushAll(interp, arguments);
  return bobRunCall(interp, int(arguments.size()) + 2);
}

BobValue bobCallByName(BobScope* scope, std::string_view name, std::initializer_list<BobValue> arguments) {
  BobInterp* interp = scope->interp;
  bobCheckStack(interp, uint32_t(arguments.size()) + 3);
  uint32_t* function = interp->sp - 1;
  pushAll(interp, {kBobNil, scope->object, scope->object});
  pushAll(interp, arguments);
  const BobValue symbol = bobIntern(interp, name);
  if (!bobFindGlobal(interp, scope->object, symbol, function)) bobRaise(interp, kBobUnboundVariable, symbol);
  return bobRunCall(interp, int(arguments.size()) + 2);
}

BobValue bobSend(BobInterp* interp, BobValue object, BobValue selector, std::initializer_list<BobValue> arguments) {
  bobCheckStack(interp, uint32_t(arguments.size()) + 3);
  pushAll(interp, {object, selector, object});
  pushAll(interp, arguments);
  return bobRunSend(interp, int(arguments.size()) + 2);
}

BobValue bobSend(BobInterp* interp, BobValue object, std::string_view selector,
                 std::initializer_list<BobValue> arguments) {
  bobCheckStack(interp, uint32_t(arguments.size()) + 3);
  uint32_t* slot = interp->sp - 2;
  pushAll(interp, {object, kBobNil, object});
  pushAll(interp, arguments);
  *slot = bobIntern(interp, selector);
  return bobRunSend(interp, int(arguments.size()) + 2);
}

bool bobTry(BobInterp* interp, void (*body)(void* data), void* data) {
  BobSavedFrame saved(interp);
  try {
    body(data);
    return true;
  } catch (const BobUnwind&) {
    saved.restore();
    return false;
  } catch (...) {  // the host's, which ends the call
    saved.restore();
    throw;
  }
}
