// The loop that runs threaded code.
//
// pc, sp, val and the top of the current variables are locals; everything else stays in BobInterp. Ahead of whatever
// can raise, allocate or look at the registers the locals are stored, and behind what can move objects they are read
// back.
#include <algorithm>

#include "bob/arithmetic.h"
#include "bob/frames.h"
#include "bob/lookup.h"

using namespace BobLayout;

namespace {

bool IsSymbol(BobInterp* interp, BobValue value) { return !bobIsSmall(value) && *interp->words(value) == kBobSymbol; }

// The word behind the environment's slots: variable k lies k words below it.
uint32_t* TopOf(BobInterp* interp, BobValue env) {
  uint32_t* w = interp->words(env);
  return w + kEnvNext + w[kEnvCount];
}

// The variable `depth` environments out, or null if there is none.
uint32_t* FindVariable(BobInterp* interp, uint32_t depth, uint32_t index) {
  BobValue env = interp->env;
  for (; depth > 0 && env != kBobNil; --depth) env = interp->words(env)[kEnvNext];
  if (env == kBobNil || index > interp->words(env)[kEnvCount] - 2) return nullptr;
  return TopOf(interp, env) - index;
}

BobValue FindGlobal(BobInterp* interp, BobValue symbol, uint32_t* cache) {
  if (IsSymbol(interp, symbol))
    if (const BobValue property = bobFindAndCache(interp, interp->scope.object, symbol, cache))
      return interp->words(property)[kValue];
  BobValue value;
  if (!bobFindGlobal(interp, interp->scope.object, symbol, &value)) bobRaise(interp, kBobUnboundVariable, symbol);
  return value;
}

BobValue GetAnyProperty(BobInterp* interp, BobValue object, BobValue key) {
  const BobLocal keep(interp, key);
  BobValue value;
  if (!bobGetProperty(interp, object, key, &value)) bobRaise(interp, kBobNoProperty, keep);
  return value;
}

// Stores val. The two instructions report different things on purpose: a property its key, an element the value.
void SetAnyProperty(BobInterp* interp, BobValue object, BobValue key, bool isElement) {
  const BobLocal keep(interp, key);
  if (!bobSetProperty(interp, object, key, interp->val))
    bobRaise(interp, kBobNoProperty, isElement ? interp->val : keep.value);
}

// An element by a small index, or null: then the general road decides.
uint32_t* FindElement(BobInterp* interp, BobValue object, BobValue index) {
  if (bobIsSmall(object) || !bobIsSmall(index)) return nullptr;
  uint32_t* w = interp->words(object);
  if (w[0] == kBobMovedVector) w = interp->words(w[kMovedTo]);
  if (w[0] != kBobVector || uint32_t(bobSmallValue(index)) >= w[kSize]) return nullptr;
  return w + kElements + bobSmallValue(index);
}

BobValue MakeClosure(BobInterp* interp) {
  if (!interp->isA(interp->val, kBobCompiledCode)) bobRaise(interp, kBobBadOpcode);
  bobMoveEnvironments(interp);
  return bobMakeMethod(interp, interp->val, interp->env, interp->scope.object);
}

// Pops the elements of a vector literal, the last one first; their number is in val.
void GatherVector(BobInterp* interp) {
  if (!bobIsInteger(interp, interp->val)) bobRaise(interp, kBobWrongType, interp->val);
  const int32_t count = bobIntegerValue(interp, interp->val);
  if (count < 0) bobRaise(interp, kBobIndexOutOfBounds, interp->val);
  if (count > interp->fp - interp->sp) bobRaise(interp, kBobBadOpcode);
  const BobValue vector = bobMakeVector(interp, uint32_t(count));
  uint32_t* elements = interp->words(vector) + kElements;
  for (int32_t i = count - 1; i >= 0; --i) elements[i] = *interp->sp++;
  interp->val = vector;
}

// The method that a send to a plain object finds, or 0.
BobValue FindMethod(BobInterp* interp, BobValue lookup, BobValue selector, uint32_t* cache) {
  if (!IsSymbol(interp, selector) || !interp->isA(lookup, kBobObject)) return 0;
  const BobValue property = bobFindCached(interp, lookup, selector, cache);
  return property ? interp->words(property)[kValue] : 0;
}

}  // namespace

// Keeps the machine's locals where everything else can see them, and reads them back.
#define STORE() (interp->sp = sp, interp->val = val, interp->pc = pc)
#define RELOAD() (val = interp->val, vars = TopOf(interp, interp->env))
#define NEXT()                    \
  do {                            \
    insn = *pc++;                 \
    goto* kHandlers[insn & 0xFF]; \
  } while (0)
#define A() (insn >> 8 & 0xFF)
#define B() (insn >> 16)
#define PUSH(value)                           \
  do {                                        \
    if (sp == interp->stackBase) [[unlikely]] \
      goto stackOverflow;                     \
    const BobValue pushed = (value);          \
    *--sp = pushed;                           \
  } while (0)
#define BRANCH() (pc += int32_t(*pc))

// A binary instruction: `fast` sets val from the small integers a and b or leaves by goto slow.
#define BINARY(label, op, fast)                                                       \
  label : {                                                                           \
    const BobValue left = *sp;                                                        \
    if (left & val & 1) [[likely]] {                                                  \
      [[maybe_unused]] const int32_t a = bobSmallValue(left), b = bobSmallValue(val); \
      fast;                                                                           \
    }                                                                                 \
    STORE();                                                                          \
    ++interp->sp;                                                                     \
    interp->val = bobArithmetic(interp, op, left, val);                               \
    ++sp;                                                                             \
    RELOAD();                                                                         \
    NEXT();                                                                           \
  }
#define SMALL_RESULT(expression)      \
  do {                                \
    const int32_t r = (expression);   \
    if (bobFitsSmall(r)) [[likely]] { \
      val = bobSmall(r);              \
      ++sp;                           \
      NEXT();                         \
    }                                 \
  } while (0)
#define COMPARE(label, relation)                                  \
  label : {                                                       \
    const BobValue left = *sp++;                                  \
    if (left & val & 1) [[likely]] {                              \
      val = bobBoolean(int32_t(left) relation int32_t(val));      \
    } else {                                                      \
      STORE();                                                    \
      val = bobBoolean(bobCompare(interp, left, val) relation 0); \
    }                                                             \
    NEXT();                                                       \
  }
#define UNARY(label, op, fast)               \
  label : {                                  \
    if (val & 1) [[likely]] {                \
      const int32_t r = (fast);              \
      if (bobFitsSmall(r)) [[likely]] {      \
        val = bobSmall(r);                   \
        NEXT();                              \
      }                                      \
    }                                        \
    STORE();                                 \
    interp->val = bobUnary(interp, op, val); \
    RELOAD();                                \
    NEXT();                                  \
  }

void bobExecute(BobInterp* const interp) {
#define BOB_HANDLER(name) &&do##name,
  static const void* const kHandlers[256] = {BOB_THREAD_OPCODES(BOB_HANDLER)};
#undef BOB_HANDLER
  uint32_t insn;
  const uint32_t* constants;
  uint32_t* pc = interp->pc;
  uint32_t* sp = interp->sp;
  BobValue val = interp->val;
  uint32_t* vars = TopOf(interp, interp->env);
  NEXT();

doJump:
  BRANCH();
  NEXT();
doBrt:
  if (val != kBobFalse)
    BRANCH();
  else
    ++pc;
  NEXT();
doBrf:
  if (val == kBobFalse)
    BRANCH();
  else
    ++pc;
  NEXT();
doTrue:
  val = kBobTrue;
  NEXT();
doNil:
  val = kBobNil;
  NEXT();
doPush:
  PUSH(val);
  NEXT();
doNot:
  val = bobBoolean(val == kBobFalse);
  NEXT();

  BINARY(doAdd, kOpAdd, SMALL_RESULT(a + b))
  BINARY(doSub, kOpSub, SMALL_RESULT(a - b))
  BINARY(doMul, kOpMul, SMALL_RESULT(int32_t(uint32_t(a) * uint32_t(b))))
  BINARY(doDiv, kOpDiv, SMALL_RESULT(bobDivide(a, b)))
  BINARY(doRem, kOpRem, SMALL_RESULT(bobRemainder(a, b)))
  BINARY(doBand, kOpBand, SMALL_RESULT(a & b))
  BINARY(doBor, kOpBor, SMALL_RESULT(a | b))
  BINARY(doXor, kOpXor, SMALL_RESULT(a ^ b))
  BINARY(doShl, kOpShl, SMALL_RESULT(bobShiftLeft(a, b)))
  BINARY(doShr, kOpShr, SMALL_RESULT(bobShiftRight(a, b)))
  UNARY(doNeg, kOpNeg, -bobSmallValue(val))
  UNARY(doInc, kOpInc, bobSmallValue(val) + 1)
  UNARY(doDec, kOpDec, bobSmallValue(val) - 1)
  UNARY(doBnot, kOpBnot, ~bobSmallValue(val))
  COMPARE(doLt, <)
  COMPARE(doLe, <=)
  COMPARE(doGe, >=)
  COMPARE(doGt, >)
doEq : {
  const BobValue left = *sp++;
  val = bobBoolean(left == val || (!(left & val & 1) && bobEqual(interp, left, val)));
  NEXT();
}
doNe : {
  const BobValue left = *sp++;
  val = bobBoolean(left != val && ((left & val & 1) || !bobEqual(interp, left, val)));
  NEXT();
}

doLit:
  constants = interp->words(interp->code) + kCodeElements;
  val = constants[B()];
  NEXT();
doGref:
  if (bobCacheHolds(interp, pc, interp->scope.object)) [[likely]] {
    val = interp->words(pc[kCacheProperty])[kValue];
  } else {
    STORE();
    val = FindGlobal(interp, interp->words(interp->code)[kCodeElements + B()], pc);
  }
  pc += kBobCacheWords;
  NEXT();
doGset:
  if (bobCacheHolds(interp, pc, interp->scope.object)) [[likely]] {
    interp->words(pc[kCacheProperty])[kValue] = val;
  } else {
    const BobValue symbol = interp->words(interp->code)[kCodeElements + B()];
    STORE();
    const BobValue own = IsSymbol(interp, symbol) ? bobFindSymbolLocally(interp, interp->scope.object, symbol) : 0;
    if (own) {
      interp->words(own)[kValue] = val;
      bobFillCache(interp, pc, interp->scope.object, own);
    } else {
      bobSetProperty(interp, interp->scope.object, symbol, val);
      RELOAD();
    }
  }
  pc += kBobCacheWords;
  NEXT();

doVref:
  if (const uint32_t* element = FindElement(interp, *sp, val)) {
    val = *element;
    ++sp;
    pc += kBobCacheWords;
    NEXT();
  }
doGetp : {
  const BobValue object = *sp++;
  if (IsSymbol(interp, val) && interp->isA(object, kBobObject)) {
    if (const BobValue property = bobFindCached(interp, object, val, pc)) {
      val = interp->words(property)[kValue];
      pc += kBobCacheWords;
      NEXT();
    }
  }
  STORE();
  interp->val = GetAnyProperty(interp, object, val);
  RELOAD();
  pc += kBobCacheWords;
  NEXT();
}
doVset:
  if (uint32_t* element = FindElement(interp, sp[1], sp[0])) {
    *element = val;
    sp += 2;
    pc += kBobCacheWords;
    NEXT();
  }
doSetp : {
  const BobValue key = sp[0], object = sp[1];
  sp += 2;
  if (IsSymbol(interp, key) && interp->isA(object, kBobObject)) {
    BobValue property = 0;
    if (bobCacheHolds(interp, pc, object) && interp->words(pc[kCacheProperty])[kKey] == key) {
      property = pc[kCacheProperty];
    } else if ((property = bobFindSymbolLocally(interp, object, key))) {
      bobFillCache(interp, pc, object, property);
    }
    if (property) {
      interp->words(property)[kValue] = val;
      pc += kBobCacheWords;
      NEXT();
    }
  }
  STORE();
  SetAnyProperty(interp, object, key, (insn & 0xFF) == kTVset);
  RELOAD();
  pc += kBobCacheWords;
  NEXT();
}

doReturn:
  interp->val = val;
  switch (interp->fp[kFrameRecord]) {
    case kBlockFrame: bobPopBlockFrame(interp); break;
    case kTopFrame: bobPopCallFrame(interp); return;
    default: bobPopCallFrame(interp); pc = interp->pc;
  }
  sp = interp->sp;
  vars = TopOf(interp, interp->env);
  NEXT();
doUnframe:
  bobPopBlockFrame(interp);
  sp = interp->sp;
  vars = TopOf(interp, interp->env);
  NEXT();
doCframe:
  if (uint32_t(sp - interp->stackBase) < A()) goto stackOverflow;
  for (uint32_t i = A(); i > 0; --i) *--sp = kBobNil;
doFrame:
  STORE();
  bobCheckRoom(interp, kBlockFrameWords);
  bobPushBlockFrame(interp, A());
  sp = interp->sp;
  vars = TopOf(interp, interp->env);
  NEXT();

doSend : {
  const uint32_t slots = A();
  STORE();
  const BobValue lookup = sp[slots - 2];
  if (const BobValue method = FindMethod(interp, lookup, sp[slots - 1], pc)) {
    const BobValue parent = interp->words(lookup)[kParent];
    sp[slots - 1] = sp[slots];
    sp[slots - 2] = parent;
    sp[slots] = method;
  } else {
    bobPrepareSend(interp, int(slots));
  }
  pc += kBobCacheWords;
}
doCall:
  STORE();
  bobEnterCall(interp, int(A()), kCallFrame);
  pc = interp->pc;
  sp = interp->sp;
  RELOAD();
  NEXT();

doVar0:
  val = vars[-int(B())];
  NEXT();
doSet0:
  vars[-int(B())] = val;
  NEXT();
doVar1:
  val = TopOf(interp, interp->words(interp->env)[kEnvNext])[-int(B())];
  NEXT();
doSet1:
  TopOf(interp, interp->words(interp->env)[kEnvNext])[-int(B())] = val;
  NEXT();
doVar:
  if (const uint32_t* variable = FindVariable(interp, A(), B())) {
    val = *variable;
    NEXT();
  }
  goto doBad;
doSet:
  if (uint32_t* variable = FindVariable(interp, A(), B())) {
    *variable = val;
    NEXT();
  }
  goto doBad;

doDup2:
  if (sp - interp->stackBase < 2) goto stackOverflow;
  sp -= 2;
  sp[1] = val;
  sp[0] = sp[2];
  NEXT();
doDrop:
  val = *sp++;
  NEXT();
doDup:
  PUSH(sp[0]);
  NEXT();
doOver:
  PUSH(sp[1]);
  NEXT();
doPushScope:
  PUSH(interp->scope.object);
  PUSH(interp->scope.object);
  NEXT();
doArgsGe:
  val = bobBoolean(interp->argc >= int(A()));
  NEXT();

doNewObject:
  STORE();
  interp->val = interp->recordOf(val)->New(interp, val);
  RELOAD();
  NEXT();
doNewVector:
  STORE();
  GatherVector(interp);
  sp = interp->sp;
  RELOAD();
  NEXT();
doClose:
  STORE();
  interp->val = MakeClosure(interp);
  RELOAD();
  NEXT();
doSwitch : {
  constants = interp->words(interp->code) + kCodeElements;
  uint32_t left = B();
  while (left > 0 && !bobEqual(interp, constants[pc[0]], val)) --left, pc += 2;
  if (left > 0) ++pc;
  BRANCH();
  NEXT();
}
doCheckPops:
  if (interp->fp - sp >= int(B())) NEXT();
doBad:
  STORE();
  bobRaise(interp, kBobBadOpcode);
stackOverflow:
  STORE();
  bobRaise(interp, kBobStackOverflow);
}
