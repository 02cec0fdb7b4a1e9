// The loop that runs quick code.
//
// pc, sp, val and the top of the current variables are locals; everything else stays in BobInterp. Ahead of whatever
// can raise, allocate or look at the registers the locals are stored, and behind what can move objects they are read
// back. A joined instruction does what its parts do one after the other, the check for room on the stack included.
#include "bob/run/machine.h"

#include "bob/model/members.h"
#include "bob/model/values.h"
#include "bob/run/arithmetic.h"
#include "bob/run/enter.h"
#include "bob/run/frames.h"
#include "bob/run/lookup.h"
#include "bob/run/quickops.h"

using namespace BobLayout;

static void bobRest(BobInterp* interp) {
#ifdef BOB_FUEL  // for fuzzing: what has run for too long is stopped without a word
  interp->stepsToRest = 1;
  bobRaise(interp, kBobRestart);
#endif
  interp->stepsToRest = kBobStepsToRest;
  if (interp->rest) interp->rest(interp);
}

#define STORE() (interp->sp = sp, interp->val = val, interp->pc = pc)
#define RELOAD() (val = interp->val, vars = bobTopOfVariables(interp, interp->env))
#define NEXT()                    \
  do {                            \
    insn = *pc++;                 \
    goto* kHandlers[insn & 0xFF]; \
  } while (0)
#define A() (insn >> 8 & 0xFF)
#define B() (insn >> 16)
#define NEAR_A() int8_t(insn >> 8)
#define FAR_B() int16_t(insn >> 16)
#define VARIABLE(index) vars[-int(index)]
#define LITERAL(number) (interp->words(interp->code)[kCodeElements + (number)])
#define BRANCH() (TURN(), pc += int32_t(*pc))
#define TURN() (--interp->stepsToRest == 0 ? (STORE(), bobRest(interp)) : void())
#define ROOM(count)                            \
  do {                                         \
    if (sp - stackBase < (count)) [[unlikely]] \
      goto stackOverflow;                      \
  } while (0)
#define PUSH(value)                  \
  do {                               \
    const BobValue pushed = (value); \
    ROOM(1);                         \
    *--sp = pushed;                  \
  } while (0)

// An arithmetic instruction in its ten forms.
#define OPERANDS(name, loadLeft, loadRight, room) \
  do ##name : left = loadLeft;                    \
  right = loadRight;                              \
  room;
#define ARITHMETIC_FORMS(name)                                                     \
  OPERANDS(name##VVSet, VARIABLE(NEAR_A()), VARIABLE(int8_t(insn >> 16)), ROOM(1)) \
  target = int8_t(insn >> 24);                                                     \
  goto set##name;                                                                  \
  OPERANDS(name##VLSet, VARIABLE(NEAR_A()), *pc++, ROOM(1))                        \
  target = FAR_B();                                                                \
  goto set##name;                                                                  \
  OPERANDS(name##AVSet, val, VARIABLE(FAR_B()), ROOM(1))                           \
  target = NEAR_A();                                                               \
  goto set##name;                                                                  \
  OPERANDS(name##ALSet, val, *pc++, ROOM(1))                                       \
  target = NEAR_A();                                                               \
  goto set##name;                                                                  \
  OPERANDS(name##Set, *sp++, val, )                                                \
  target = NEAR_A();                                                               \
  set##name : COMPUTE(name, VARIABLE(target) = val);                               \
  OPERANDS(name##VV, VARIABLE(NEAR_A()), VARIABLE(FAR_B()), ROOM(1))               \
  goto plain##name;                                                                \
  OPERANDS(name##VL, VARIABLE(NEAR_A()), *pc++, ROOM(1))                           \
  goto plain##name;                                                                \
  OPERANDS(name##AV, val, VARIABLE(FAR_B()), ROOM(1))                              \
  goto plain##name;                                                                \
  OPERANDS(name##AL, val, *pc++, ROOM(1))                                          \
  goto plain##name;                                                                \
  OPERANDS(name, *sp++, val, )                                                     \
  plain##name : COMPUTE(name, );
#define COMPUTE(name, set)                                                     \
  do {                                                                         \
    if ((left & right & 1) && bobFast##name(left, right, &quick)) [[likely]] { \
      val = quick;                                                             \
      set;                                                                     \
      NEXT();                                                                  \
    }                                                                          \
    STORE();                                                                   \
    interp->val = bobArithmetic(interp, kOp##name, left, right);               \
    RELOAD();                                                                  \
    set;                                                                       \
    NEXT();                                                                    \
  } while (0)

// Whether `left relation right`, for small integers straight from their words.
#define ORDER(relation) \
  ((left & right & 1) ? int32_t(left) relation int32_t(right) : (STORE(), bobCompare(interp, left, right) relation 0))
#define EQUAL() (left == right || (!(left & right & 1) && bobEqual(interp, left, right)))

// A comparison, and its joined forms with a branch when it holds or when it doesn't.
#define BRANCH_IF(condition) \
  do {                       \
    if (condition)           \
      BRANCH();              \
    else                     \
      ++pc;                  \
    NEXT();                  \
  } while (0)
#define TEST_FORM(name, form, loadLeft, loadRight, test) \
  do ##name##form##Brt : left = loadLeft;                \
  right = loadRight;                                     \
  ROOM(1);                                               \
  val = bobBoolean(test);                                \
  BRANCH_IF(val != kBobFalse);                           \
  do ##name##form##Brf : left = loadLeft;                \
  right = loadRight;                                     \
  ROOM(1);                                               \
  val = bobBoolean(test);                                \
  BRANCH_IF(val == kBobFalse);
#define COMPARISON(name, test)                                     \
  TEST_FORM(name, VV, VARIABLE(NEAR_A()), VARIABLE(FAR_B()), test) \
  TEST_FORM(name, VL, VARIABLE(NEAR_A()), *pc++, test)             \
  TEST_FORM(name, AV, val, VARIABLE(FAR_B()), test)                \
  TEST_FORM(name, AL, val, *pc++, test)                            \
  do ##name : left = *sp++;                                        \
  right = val;                                                     \
  val = bobBoolean(test);                                          \
  NEXT();

#define UNARY(name, op, result)             \
  do ##name : if (val & 1) [[likely]] {     \
      const int32_t a = bobSmallValue(val); \
      const int32_t r = (result);           \
      if (bobFitsSmall(r)) [[likely]] {     \
        val = bobSmall(r);                  \
        NEXT();                             \
      }                                     \
    }                                       \
  STORE();                                  \
  interp->val = bobUnary(interp, op, val);  \
  RELOAD();                                 \
  NEXT();

void bobExecute(BobInterp* const interp) {
#define BOB_HANDLER(name) &&do##name,
  static const void* const kHandlers[256] = {BOB_QUICK_OPS(BOB_HANDLER)};
#undef BOB_HANDLER
  static_assert(kQEnd <= 256);
  uint32_t insn;
  int target;
  BobValue left, right, quick, property;
  uint32_t* place;
  uint32_t* const stackBase = interp->stackBase;
  uint32_t* pc = interp->pc;
  uint32_t* sp = interp->sp;
  BobValue val = interp->val;
  uint32_t* vars = bobTopOfVariables(interp, interp->env);
  NEXT();

doJump:
  BRANCH();
  NEXT();
doBrt:
  BRANCH_IF(val != kBobFalse);
doBrf:
  BRANCH_IF(val == kBobFalse);
doTrue:
  val = kBobTrue;
  NEXT();
doNil:
  val = kBobNil;
  NEXT();
doPush:
  PUSH(val);
  NEXT();
doPushVar:
  val = VARIABLE(NEAR_A());
  PUSH(val);
  NEXT();
doVarCallee:
  val = VARIABLE(NEAR_A());
  ROOM(3);
  sp -= 3;
  sp[0] = sp[1] = interp->scope.object;
  sp[2] = val;
  NEXT();
doPushVarVar:
  ROOM(2);
  sp -= 2;
  sp[1] = VARIABLE(NEAR_A());
  sp[0] = val = VARIABLE(FAR_B());
  NEXT();
doPushLit:
  val = LITERAL(B());
  PUSH(val);
  NEXT();
doPushVarLit:
  ROOM(2);
  sp -= 2;
  sp[1] = VARIABLE(NEAR_A());
  sp[0] = val = LITERAL(B());
  NEXT();
doNot:
  val = bobBoolean(val == kBobFalse);
  NEXT();

  ARITHMETIC_FORMS(Add)
  ARITHMETIC_FORMS(Sub)
  ARITHMETIC_FORMS(Mul)
  ARITHMETIC_FORMS(Div)
  ARITHMETIC_FORMS(Rem)
  ARITHMETIC_FORMS(Band)
  ARITHMETIC_FORMS(Bor)
  ARITHMETIC_FORMS(Xor)
  ARITHMETIC_FORMS(Shl)
  ARITHMETIC_FORMS(Shr)
  UNARY(Neg, kOpNeg, -a)
  UNARY(Inc, kOpInc, a + 1)
  UNARY(Dec, kOpDec, a - 1)
  UNARY(Bnot, kOpBnot, ~a)
  COMPARISON(Lt, ORDER(<))
  COMPARISON(Le, ORDER(<=))
  COMPARISON(Ge, ORDER(>=))
  COMPARISON(Gt, ORDER(>))
  COMPARISON(Eq, EQUAL())
  COMPARISON(Ne, !EQUAL())

  // x++ and x--: the variable takes the step, val keeps the old value.
doStepAfter : {
  const int32_t step = int32_t(*pc++);
  const BobValue old = VARIABLE(NEAR_A());
  const int32_t stepped = bobSmallValue(old) + step;
  if (bobIsSmall(old) && bobFitsSmall(stepped)) [[likely]] {
    VARIABLE(NEAR_A()) = bobSmall(stepped);
    val = old;
    NEXT();
  }
  STORE();
  interp->val = bobUnary(interp, step == 1 ? kOpInc : kOpDec, old);
  RELOAD();
  VARIABLE(NEAR_A()) = val;
  interp->val = bobUnary(interp, step == 1 ? kOpDec : kOpInc, val);
  RELOAD();
  NEXT();
}

doLit:
  val = LITERAL(B());
  NEXT();
doGref:
doGrefPush:
doGrefCallee:
  if (bobCacheHolds(interp, pc, interp->scope.object)) [[likely]] {
    val = interp->words(pc[kCacheProperty])[kValue];
  } else {
    STORE();
    val = bobFindGlobalOrFail(interp, LITERAL(B()), pc);
  }
  pc += kBobCacheWords;
  if ((insn & 0xFF) == kQGref) NEXT();
  PUSH(val);
  if ((insn & 0xFF) == kQGrefPush) NEXT();
doPushScope:
  ROOM(2);
  sp -= 2;
  sp[0] = sp[1] = interp->scope.object;
  NEXT();
doGset:
  if (bobCacheHolds(interp, pc, interp->scope.object)) [[likely]] {
    interp->words(pc[kCacheProperty])[kValue] = val;
  } else {
    STORE();
    bobSetAnyGlobal(interp, LITERAL(B()), pc);
    RELOAD();
  }
  pc += kBobCacheWords;
  NEXT();

  // Gets: the object in left, the key in val.
doGetVarField:
  left = VARIABLE(NEAR_A());
  val = LITERAL(B());
  ROOM(1);
  goto get;
doGetField:
  left = val;
  val = LITERAL(B());
  ROOM(1);
  goto get;
doDup2Getp:
  ROOM(2);
  left = *sp;
  *--sp = val;
  goto get;
doVrefVV:
  left = VARIABLE(NEAR_A());
  val = VARIABLE(FAR_B());
  ROOM(1);
  goto getElement;
doVrefAV:
  left = val;
  val = VARIABLE(FAR_B());
  ROOM(1);
  goto getElement;
doVref:
  left = *sp++;
getElement:
  if ((place = bobFindElement(interp, left, val))) [[likely]] {
    val = *place;
    pc += kBobCacheWords;
    NEXT();
  }
  goto get;
doGetp:
  left = *sp++;
get:
  if ((property = bobFindField(interp, left, val, pc))) [[likely]] {
    val = interp->words(property)[kValue];
    pc += kBobCacheWords;
    NEXT();
  }
  STORE();
  interp->val = bobGetAnyProperty(interp, left, val, pc);
  RELOAD();
  pc += kBobCacheWords;
  NEXT();

doVset:
  if ((place = bobFindElement(interp, sp[1], sp[0]))) [[likely]] {
    *place = val;
    sp += 2;
    pc += kBobCacheWords;
    NEXT();
  }
doSetp:
  right = sp[0];
  left = sp[1];
  sp += 2;
  if (interp->isA(right, kBobSymbol) && interp->isA(left, kBobObject)) {
    property = 0;
    if (bobCacheHolds(interp, pc, left) && interp->words(pc[kCacheProperty])[kKey] == right)
      property = pc[kCacheProperty];
    else if ((property = bobFindSymbolLocally(interp, left, right)))
      bobFillCache(interp, pc, left, property);
    if (property) [[likely]] {
      interp->words(property)[kValue] = val;
      pc += kBobCacheWords;
      NEXT();
    }
  }
  STORE();
  bobSetAnyProperty(interp, left, right, (insn & 0xFF) == kQVset);
  RELOAD();
  pc += kBobCacheWords;
  NEXT();

doReturnVar:
  val = VARIABLE(NEAR_A());
doReturn:
  interp->val = val;
  if (interp->fp[kFrameRecord] == kCallFrame) [[likely]] {
    bobPopCallFrame(interp);
    pc = interp->pc;
  } else if (interp->fp[kFrameRecord] == kBlockFrame) {
    bobPopBlockFrame(interp);
  } else {
    bobPopCallFrame(interp);
    return;
  }
  sp = interp->sp;
  vars = bobTopOfVariables(interp, interp->env);
  NEXT();
doUnframe:
  bobPopBlockFrame(interp);
  sp = interp->sp;
  vars = bobTopOfVariables(interp, interp->env);
  NEXT();
doCframe:
  ROOM(int(A()));
  for (uint32_t i = A(); i > 0; --i) *--sp = kBobNil;
doFrame:
  ROOM(int(kBlockFrameWords));
  interp->sp = sp;
  bobPushBlockFrame(interp, A());
  sp = interp->sp;
  vars = bobTopOfVariables(interp, interp->env);
  NEXT();

  // The receiver and its selector, as a send wants them below its arguments.
doSelectorV:
  val = VARIABLE(NEAR_A());
doSelectorA:
  ROOM(3);
  sp -= 3;
  sp[0] = sp[2] = val;
  sp[1] = val = LITERAL(B());
  NEXT();
doSend:
  place = sp + A();
  left = place[-2];
  if ((property = bobFindField(interp, left, place[-1], pc))) [[likely]] {
    place[-1] = place[0];
    place[-2] = interp->words(left)[kParent];
    place[0] = interp->words(property)[kValue];
  } else if ((property = bobFindMember(interp, left, place[-1], pc))) {
    STORE();
    right = bobDeliver(interp, left, place[-1], interp->words(property)[kValue]);
    place[-1] = place[0];
    place[-2] = kBobNil;
    place[0] = right;
  } else {
    STORE();
    bobPrepareSend(interp, int(A()));
  }
  pc += kBobCacheWords;
doCall:
  STORE();
  TURN();
  left = sp[A()];
  if (!bobIsSmall(left) && *interp->words(left) == kBobMethod) [[likely]] {
    bobPushCallFrame(interp, int(A()), kCallFrame);
    pc = interp->pc;
  } else {
    bobEnterCall(interp, int(A()), kCallFrame);
  }
  sp = interp->sp;
  RELOAD();
  NEXT();

doOwn:
  val = VARIABLE(FAR_B());
  NEXT();
doSetOwn:
  VARIABLE(FAR_B()) = val;
  NEXT();
doVar:
  if (!(place = bobFindVariable(interp, A(), B()))) goto doBad;
  val = *place;
  NEXT();
doSet:
  if (!(place = bobFindVariable(interp, A(), B()))) goto doBad;
  *place = val;
  NEXT();

doDup2:
  ROOM(2);
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
  bobGatherVector(interp);
  sp = interp->sp;
  RELOAD();
  NEXT();
doClose:
  STORE();
  interp->val = bobMakeClosure(interp);
  RELOAD();
  NEXT();
doSwitch : {
  uint32_t cases = B();
  while (cases > 0 && !bobEqual(interp, LITERAL(pc[0]), val)) --cases, pc += 2;
  if (cases > 0) ++pc;
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
