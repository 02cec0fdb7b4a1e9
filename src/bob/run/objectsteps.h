// Instructions on globals, properties and elements. Each has a cache in place (lookup.h), which pc points at.
#pragma once

#include "bob/run/lookup.h"
#include "bob/run/registers.h"

// -- globals

BOB_STEP void loadGlobal(BobRegisters& r) {
  if (bobCacheHolds(r.interp, r.pc, r.interp->scope.object)) [[likely]] {
    r.val = r.valueOf(r.pc[kCacheProperty]);
  } else {
    r.store();
    r.val = bobFindGlobalOrFail(r.interp, r.literal(r.b()), r.pc);
  }
  r.pc += kBobCacheWords;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQGref>) { loadGlobal(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQGrefPush>) {
  loadGlobal(r);
  r.push(r.val);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQGrefCallee>) {
  loadGlobal(r);
  r.push(r.val);
  r.pushScope();
}
BOB_STEP void step(BobRegisters& r, BobOp<kQGset>) {
  if (bobCacheHolds(r.interp, r.pc, r.interp->scope.object)) [[likely]] {
    r.interp->words(r.pc[kCacheProperty])[BobLayout::kValue] = r.val;
  } else {
    r.store();
    bobSetAnyGlobal(r.interp, r.literal(r.b()), r.pc);
    r.reload();
  }
  r.pc += kBobCacheWords;
}

// -- gets: the key is in val

BOB_STEP void get(BobRegisters& r, BobValue object) {
  if (const BobValue property = bobFindField(r.interp, object, r.val, r.pc)) [[likely]] {
    r.val = r.valueOf(property);
  } else {
    r.store();
    r.interp->val = bobGetAnyProperty(r.interp, object, r.val, r.pc);
    r.reload();
  }
  r.pc += kBobCacheWords;
}

BOB_STEP void getElement(BobRegisters& r, BobValue vector) {
  const uint32_t* element = bobFindElement(r.interp, vector, r.val);
  if (!element) [[unlikely]]
    return get(r, vector);
  r.val = *element;
  r.pc += kBobCacheWords;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQGetp>) { get(r, *r.sp++); }
BOB_STEP void step(BobRegisters& r, BobOp<kQGetVarField>) {
  r.val = r.literal(r.b());
  r.need(1);
  get(r, r.variable(r.variableA()));
}
BOB_STEP void step(BobRegisters& r, BobOp<kQGetField>) {
  const BobValue object = r.val;
  r.val = r.literal(r.b());
  r.need(1);
  get(r, object);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQDup2Getp>) {
  r.need(2);
  const BobValue object = *r.sp;
  *--r.sp = r.val;
  get(r, object);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVref>) { getElement(r, *r.sp++); }
BOB_STEP void step(BobRegisters& r, BobOp<kQVrefVV>) {
  r.val = r.variable(r.variableB());
  r.need(1);
  getElement(r, r.variable(r.variableA()));
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVrefAV>) {
  const BobValue vector = r.val;
  r.val = r.variable(r.variableB());
  r.need(1);
  getElement(r, vector);
}

// -- sets: object and key are on the stack, the value in val

// The property of a plain object that is to be set, or 0.
BOB_STEP BobValue findForSet(BobRegisters& r, BobValue object, BobValue key) {
  if (!r.interp->isA(key, kBobSymbol) || !r.interp->isA(object, kBobObject)) return 0;
  if (bobCacheHolds(r.interp, r.pc, object) && r.interp->words(r.pc[kCacheProperty])[BobLayout::kKey] == key)
    return r.pc[kCacheProperty];
  const BobValue property = bobFindSymbolLocally(r.interp, object, key);
  if (property) bobFillCache(r.interp, r.pc, object, property);
  return property;
}

BOB_STEP void set(BobRegisters& r, bool isElement) {
  const BobValue key = r.sp[0], object = r.sp[1];
  r.sp += 2;
  if (const BobValue property = findForSet(r, object, key)) [[likely]] {
    r.interp->words(property)[BobLayout::kValue] = r.val;
  } else {
    r.store();
    bobSetAnyProperty(r.interp, object, key, isElement);
    r.reload();
  }
  r.pc += kBobCacheWords;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQSetp>) { set(r, false); }
BOB_STEP void step(BobRegisters& r, BobOp<kQVset>) {
  uint32_t* element = bobFindElement(r.interp, r.sp[1], r.sp[0]);
  if (!element) [[unlikely]]
    return set(r, true);
  *element = r.val;
  r.sp += 2;
  r.pc += kBobCacheWords;
}
