// Calls and sends, and the ways into the machine from outside.
#include <algorithm>

#include "bob/bob.h"
#include "bob/frames.h"

using namespace BobLayout;

namespace {

// Runs what `enter` enters with a top frame, on its own stretch of the native stack.
BobValue Run(BobInterp* interp, int slots) {
  BobSavedFrame saved(interp);
  if (interp->runDepth == kBobMaxRuns) bobRaise(interp, kBobStackOverflow);
  ++interp->runDepth;
  try {
    if (bobEnterCall(interp, slots, kTopFrame)) bobExecute(interp);
  } catch (const BobUnwind&) {
    saved.restore();
    throw;
  }
  --interp->runDepth;
  return interp->val;
}

void PushAll(BobInterp* interp, std::initializer_list<BobValue> values) {
  for (BobValue value : values) bobPush(interp, value);
}

// Pushes the elements of the vector that is the last argument, in order. Gives their number.
int SpreadLastArgument(BobInterp* interp, BobValue vector) {
  const BobValue target = bobVectorTarget(interp, vector);
  const uint32_t size = interp->words(target)[kSize];
  bobCheckRoom(interp, size);
  for (uint32_t i = 0; i < size; ++i) bobPush(interp, interp->words(target)[kElements + i]);
  return int(size);
}

BobValue LastVectorArgument(BobInterp* interp, uint32_t* argv, int argc) {
  const BobValue vector = argv[-argc];
  if (interp->recordOf(vector)->base != kBobVector) bobRaise(interp, kBobWrongType, vector);
  return vector;
}

}  // namespace

bool bobEnterCall(BobInterp* interp, int slots, BobFrameRecord record) {
  uint32_t* const argv = interp->sp + slots;
  const BobValue function = *argv;
  if (interp->isA(function, kBobMethod)) {
    bobPushCallFrame(interp, slots, record);
    return true;
  }
  interp->argv = argv;
  interp->argc = slots;
  if (!interp->isA(function, kBobCMethod)) bobRaise(interp, kBobWrongType, function);
  interp->val = interp->staticRows[interp->words(function)[kRowIndex]].method->function(interp);
  interp->sp = argv + 1;
  return false;
}

void bobPrepareSend(BobInterp* interp, int slots) {
  uint32_t* const sp = interp->sp;
  const BobValue selector = sp[slots - 1];
  BobValue method;
  if (!bobGetProperty(interp, sp[slots - 2], selector, &method)) bobRaise(interp, kBobNoMethod, sp[slots - 1]);
  const BobValue lookup = sp[slots - 2];
  const BobValue parent = interp->isObject(lookup) ? interp->words(lookup)[kParent] : kBobNil;
  sp[slots - 1] = sp[slots];
  sp[slots - 2] = parent ? parent : kBobNil;
  sp[slots] = method;
}

BobValue bobRunCall(BobInterp* interp, int slots) { return Run(interp, slots); }

BobValue bobRunSend(BobInterp* interp, int slots) {
  bobPrepareSend(interp, slots);
  return Run(interp, slots);
}

BobValue bobCall(BobScope* scope, BobValue function, std::initializer_list<BobValue> arguments) {
  BobInterp* interp = scope->interp;
  bobCheckRoom(interp, uint32_t(arguments.size()) + 3);
  PushAll(interp, {function, scope->object, scope->object});
  PushAll(interp, arguments);
  return bobRunCall(interp, int(arguments.size()) + 2);
}

BobValue bobCallByName(BobScope* scope, std::string_view name, std::initializer_list<BobValue> arguments) {
  BobInterp* interp = scope->interp;
  bobCheckRoom(interp, uint32_t(arguments.size()) + 3);
  uint32_t* function = interp->sp - 1;
  PushAll(interp, {kBobNil, scope->object, scope->object});
  PushAll(interp, arguments);
  const BobValue symbol = bobIntern(interp, name);
  if (!bobFindGlobal(interp, scope->object, symbol, function)) bobRaise(interp, kBobUnboundVariable, symbol);
  return bobRunCall(interp, int(arguments.size()) + 2);
}

BobValue bobSend(BobInterp* interp, BobValue object, BobValue selector, std::initializer_list<BobValue> arguments) {
  bobCheckRoom(interp, uint32_t(arguments.size()) + 3);
  PushAll(interp, {object, selector, object});
  PushAll(interp, arguments);
  return bobRunSend(interp, int(arguments.size()) + 2);
}

BobValue bobSend(BobInterp* interp, BobValue object, std::string_view selector,
                 std::initializer_list<BobValue> arguments) {
  bobCheckRoom(interp, uint32_t(arguments.size()) + 3);
  uint32_t* slot = interp->sp - 2;
  PushAll(interp, {object, kBobNil, object});
  PushAll(interp, arguments);
  *slot = bobIntern(interp, selector);
  return bobRunSend(interp, int(arguments.size()) + 2);
}

// fn.Apply(a, b, ..., vector): the arguments stand in the slots of this and _next of the function called.
BobValue bobApply(BobInterp* interp) {
  bobCheckArgumentCount(interp, 3, INT32_MAX);
  uint32_t* const argv = interp->argv;
  const int argc = interp->argc;
  if (interp->recordOf(argv[-1])->base != kBobMethod) bobRaise(interp, kBobWrongType, argv[-1]);
  const BobValue vector = LastVectorArgument(interp, argv, argc);
  bobCheckRoom(interp, uint32_t(argc));
  bobPush(interp, argv[-1]);
  for (int i = 3; i < argc; ++i) bobPush(interp, argv[-i]);
  const int elements = SpreadLastArgument(interp, vector);
  return bobRunCall(interp, argc - 3 + elements);
}

// obj.Send(selector, a, ..., vector)
BobValue bobSendFromScript(BobInterp* interp) {
  bobCheckArgumentCount(interp, 3, INT32_MAX);
  uint32_t* const argv = interp->argv;
  const int argc = interp->argc;
  if (!bobIsOfKind(interp, argv[-1], kBobObject)) bobRaise(interp, kBobWrongType, argv[-1]);
  const BobValue vector = LastVectorArgument(interp, argv, argc);  // alone it is the selector as well
  bobCheckRoom(interp, uint32_t(argc));
  bobPush(interp, argv[-1]);
  bobPush(interp, argv[-3]);
  bobPush(interp, argv[-1]);
  for (int i = 4; i < argc; ++i) bobPush(interp, argv[-i]);
  const int elements = SpreadLastArgument(interp, vector);
  return bobRunSend(interp, std::max(argc - 4, 0) + 2 + elements);
}
