#include "bob/run/lookup.h"

#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/members.h"
#include "bob/model/objects.h"
#include "bob/model/properties.h"
#include "bob/model/scopes.h"

using namespace BobLayout;

BobValue bobFindAndCache(BobInterp* interp, BobValue start, BobValue symbol, uint32_t* cache) {
  BobValue object = start;
  for (; interp->isA(object, kBobObject); object = interp->words(object)[kParent]) {
    const BobValue property = bobFindSymbolLocally(interp, object, symbol);
    if (!property) continue;
    for (BobValue passed = start; passed != object; passed = interp->words(passed)[kParent])
      interp->words(passed)[kCount] |= kBobWatched;
    bobFillCache(interp, cache, start, property);
    return property;
  }
  return 0;
}

BobValue bobFindGlobalOrFail(BobInterp* interp, BobValue symbol, uint32_t* cache) {
  if (interp->isA(symbol, kBobSymbol))
    if (const BobValue property = bobFindAndCache(interp, interp->scope.object, symbol, cache))
      return interp->words(property)[kValue];
  BobValue value;
  if (!bobFindGlobal(interp, interp->scope.object, symbol, &value)) bobRaise(interp, kBobUnboundVariable, symbol);
  return value;
}

namespace {

// Or 0 for a value of another kind.
BobValue classOfValueKind(BobInterp* interp, BobValue value) {
  switch (interp->recordOf(value)->base) {
    case kBobVector: return interp->vectorClass;
    case kBobString: return interp->stringClass;
    case kBobInteger: return interp->integerClass;
    case kBobFloat: return interp->floatClass;
    case kBobSymbol: return interp->symbolClass;
    case kBobMethod: return interp->methodClass;
    default: return 0;
  }
}

}  // namespace

BobValue bobFindMember(BobInterp* interp, BobValue object, BobValue key, uint32_t* cache) {
  if (!interp->isA(key, kBobSymbol)) return 0;
  const BobValue classObject = classOfValueKind(interp, object);
  if (!classObject) return 0;
  constexpr uint32_t kInClass = 2;
  if (bobCacheHolds(interp, cache, classObject + kInClass) && interp->words(cache[kCacheProperty])[kKey] == key)
    return cache[kCacheProperty];
  const BobValue property = bobFindSymbolLocally(interp, classObject, key);
  if (property) bobFillCache(interp, cache, classObject + kInClass, property);
  return property;
}

BobValue bobGetAnyProperty(BobInterp* interp, BobValue object, BobValue key, uint32_t* cache) {
  if (const BobValue member = bobFindMember(interp, object, key, cache))
    return bobDeliver(interp, object, key, interp->words(member)[kValue]);
  const BobLocal keep(interp->locals, key);
  BobValue value;
  if (!bobGetProperty(interp, object, key, &value)) bobRaise(interp, kBobNoProperty, keep);
  return value;
}

void bobSetAnyProperty(BobInterp* interp, BobValue object, BobValue key, bool isElement) {
  const BobLocal keep(interp->locals, key);
  if (!bobSetProperty(interp, object, key, interp->val))
    bobRaise(interp, kBobNoProperty, isElement ? interp->val : keep.value);
}

void bobSetAnyGlobal(BobInterp* interp, BobValue symbol, uint32_t* cache) {
  const BobValue scope = interp->scope.object;
  const BobValue own = interp->isA(symbol, kBobSymbol) ? bobFindSymbolLocally(interp, scope, symbol) : 0;
  if (!own) {
    bobSetProperty(interp, scope, symbol, interp->val);
    return;
  }
  interp->words(own)[kValue] = interp->val;
  bobFillCache(interp, cache, scope, own);
}
