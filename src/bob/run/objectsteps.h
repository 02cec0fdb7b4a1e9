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
  r.need(3);
  r.sp -= 3;
  r.sp[0] = r.sp[1] = r.interp->scope.object;
  r.sp[2] = r.val;
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

// -- elements: of a vector by a small index, or null

BOB_STEP uint32_t* findElement(BobRegisters& r, BobValue object, BobValue index) {
  using namespace BobLayout;
  if (bobIsSmall(object) || !bobIsSmall(index)) return nullptr;
  uint32_t* w = r.words(object);
  if (w[0] != kBobVector) {
    if (w[0] != kBobMovedVector) return nullptr;
    w = r.words(w[kMovedTo]);
  }
  if (index >> 1 >= w[kSize]) return nullptr;  // as is a negative one
  return reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(w + kElements) + 2 * size_t(index) - 2);
}

// The byte of a string at a small index, or -1.
BOB_STEP int findByte(BobRegisters& r, BobValue object, BobValue index) {
  using namespace BobLayout;
  if (bobIsSmall(object) || !bobIsSmall(index)) return -1;
  const uint32_t* w = r.words(object);
  if (w[0] != kBobString || index >> 1 >= w[kStringLength]) return -1;
  return reinterpret_cast<const uint8_t*>(w)[kStringBytes + (index >> 1)];
}

// -- the property of a plain object under a symbol; 0 for anything else, about which the general paths decide

// The same at a place where the key is always `key`.
BOB_STEP BobValue findFieldOf(BobRegisters& r, BobValue object, BobValue key) {
  if (bobCacheHolds(r.interp, r.pc, object)) [[likely]]
    return r.pc[kCacheProperty];
  if (bobIsSmall(object) || *r.words(object) != kBobObject) return 0;
  return bobFindCached(r.interp, object, key, r.pc);
}

BOB_STEP BobValue findField(BobRegisters& r, BobValue object, BobValue key) {
  const BobValue cached = r.pc[kCacheProperty];
  if (bobCacheHolds(r.interp, r.pc, object) && r.words(cached)[BobLayout::kKey] == key) [[likely]]
    return cached;
  if (bobIsSmall(object) || *r.words(object) != kBobObject || !r.interp->isA(key, kBobSymbol)) return 0;
  return bobFindCached(r.interp, object, key, r.pc);
}

// The object's own, to be set.
BOB_STEP BobValue findOwnField(BobRegisters& r, BobValue object, BobValue key) {
  if (!r.interp->isA(key, kBobSymbol) || !r.interp->isA(object, kBobObject)) return 0;
  const BobValue property = bobFindSymbolLocally(r.interp, object, key);
  if (property) bobFillCache(r.interp, r.pc, object, property);
  return property;
}

// -- gets

BOB_STEP void getElsewhere(BobRegisters& r, BobValue object, BobValue key) {
  r.store();
  r.interp->val = bobGetAnyProperty(r.interp, object, key, r.pc);
  r.reload();
}

// The key is in val.
BOB_STEP void get(BobRegisters& r, BobValue object) {
  if (const BobValue property = findField(r, object, r.val)) [[likely]]
    r.val = r.valueOf(property);
  else
    getElsewhere(r, object, r.val);
  r.pc += kBobCacheWords;
}

// The key, a symbol, is the next word.
BOB_STEP void getField(BobRegisters& r, BobValue object) {
  const BobValue key = *r.pc++;
  r.need(1);
  if (const BobValue property = findFieldOf(r, object, key)) [[likely]]
    r.val = r.valueOf(property);
  else
    getElsewhere(r, object, key);
  r.pc += kBobCacheWords;
}

BOB_STEP void getElement(BobRegisters& r, BobValue vector, BobValue index) {
  if (const uint32_t* element = findElement(r, vector, index)) [[likely]] {
    r.val = *element;
  } else if (const int byte = findByte(r, vector, index); byte >= 0) {
    r.val = bobSmall(byte);
  } else {
    r.val = index;
    return get(r, vector);
  }
  r.pc += kBobCacheWords;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQGetp>) { get(r, *r.sp++); }
BOB_STEP void step(BobRegisters& r, BobOp<kQGetVarField>) { getField(r, r.variable(r.a())); }
BOB_STEP void step(BobRegisters& r, BobOp<kQPushGetVarField>) {
  r.push(r.val);
  getField(r, r.variable(r.a()));
}
BOB_STEP void step(BobRegisters& r, BobOp<kQGetField>) { getField(r, r.val); }
BOB_STEP void step(BobRegisters& r, BobOp<kQDup2Getp>) {
  r.need(2);
  const BobValue object = *r.sp;
  *--r.sp = r.val;
  get(r, object);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVref>) { getElement(r, *r.sp++, r.val); }
BOB_STEP void step(BobRegisters& r, BobOp<kQVrefVV>) {
  r.need(1);
  getElement(r, r.variable(r.a()), r.variable(r.b()));
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVrefVA>) {
  r.need(1);
  getElement(r, r.variable(r.a()), r.val);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVrefAV>) {
  r.need(1);
  getElement(r, r.val, r.variable(r.b()));
}

// -- sets: the value is in val

BOB_STEP void setElsewhere(BobRegisters& r, BobValue object, BobValue key, bool isElement) {
  r.store();
  bobSetAnyProperty(r.interp, object, key, isElement);
  r.reload();
}

BOB_STEP void set(BobRegisters& r, BobValue object, BobValue key, bool isElement) {
  const BobValue cached = r.pc[kCacheProperty];
  if (bobCacheHolds(r.interp, r.pc, object) && r.words(cached)[BobLayout::kKey] == key) [[likely]]
    r.words(cached)[BobLayout::kValue] = r.val;
  else if (const BobValue property = findOwnField(r, object, key))
    r.words(property)[BobLayout::kValue] = r.val;
  else
    setElsewhere(r, object, key, isElement);
  r.pc += kBobCacheWords;
}

BOB_STEP void setElement(BobRegisters& r, BobValue vector, BobValue index) {
  uint32_t* element = findElement(r, vector, index);
  if (!element) [[unlikely]]
    return set(r, vector, index, true);
  *element = r.val;
  r.pc += kBobCacheWords;
}

// The key, a symbol, is the next word.
BOB_STEP void setField(BobRegisters& r, BobValue object) {
  const BobValue key = *r.pc++;
  if (bobCacheHolds(r.interp, r.pc, object)) [[likely]]
    r.words(r.pc[kCacheProperty])[BobLayout::kValue] = r.val;
  else if (const BobValue property = findOwnField(r, object, key))
    r.words(property)[BobLayout::kValue] = r.val;
  else
    setElsewhere(r, object, key, false);
  r.pc += kBobCacheWords;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQSetp>) {
  r.sp += 2;
  set(r, r.sp[-1], r.sp[-2], false);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQSetVarField>) {
  r.need(2);
  setField(r, r.variable(r.a()));
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVset>) {
  r.sp += 2;
  setElement(r, r.sp[-1], r.sp[-2]);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVsetVS>) {
  r.need(1);
  setElement(r, r.variable(r.a()), *r.sp++);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVsetVV>) {
  r.need(2);
  setElement(r, r.variable(r.a()), r.variable(r.b()));
}
