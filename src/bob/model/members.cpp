#include "bob/model/members.h"

#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/properties.h"
#include "bob/model/rows.h"

using namespace BobLayout;

namespace {

const BobPropertyRow* propertyRow(BobInterp* interp, BobValue value) {
  return interp->isA(value, kBobVPMethod) ? interp->staticRows[interp->words(value)[kRowIndex]].property : nullptr;
}

void runSetter(BobInterp* interp, const BobPropertyRow* row, BobValue object, BobValue key, BobValue value) {
  if (!row->setter) bobRaise(interp, kBobReadOnly, key);
  row->setter(interp, object, value);
}

// The property under the key in the class of the kind or of one further up, or 0.
BobValue findInKinds(BobInterp* interp, uint32_t type, BobValue key) {
  for (; type; type = interp->record(type)->parentType) {
    const BobValue classObject = interp->record(type)->classObject;
    if (!classObject) continue;
    if (const BobValue property = bobFindLocally(interp, classObject, key)) return property;
  }
  return 0;
}

}  // namespace

BobValue bobClassOf(BobInterp* interp, BobValue value) {
  switch (interp->recordOf(value)->base) {
    case kBobMethod: return interp->methodClass;
    case kBobVector: return interp->vectorClass;
    case kBobSymbol: return interp->symbolClass;
    case kBobString: return interp->stringClass;
    case kBobInteger: return interp->integerClass;
    default: return interp->floatClass;
  }
}

BobValue bobDeliver(BobInterp* interp, BobValue object, BobValue key, BobValue found) {
  const BobPropertyRow* row = propertyRow(interp, found);
  if (!row) return found;
  if (!row->getter) bobRaise(interp, kBobWriteOnly, key);
  return row->getter(interp, object);
}

bool bobGetValueProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  const BobValue property = bobFindLocally(interp, bobClassOf(interp, object), key);
  if (!property) return false;
  *value = bobDeliver(interp, object, key, interp->words(property)[kValue]);
  return true;
}

// Only a property row takes a value: nothing can be hung on a number or a string.
bool bobSetValueProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  const BobValue property = bobFindLocally(interp, bobClassOf(interp, object), key);
  const BobPropertyRow* row = property ? propertyRow(interp, interp->words(property)[kValue]) : nullptr;
  if (!row) return false;
  runSetter(interp, row, object, key, value);
  return true;
}

// The instance's own parent word is not consulted.
bool bobGetCObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  BobValue property = bobFindLocally(interp, object, key);
  if (!property) property = findInKinds(interp, interp->typeOf(object), key);
  if (!property) return false;
  *value = bobDeliver(interp, object, key, interp->words(property)[kValue]);
  return true;
}

bool bobSetCObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  BobPlace place;
  if (const BobValue property = bobFindLocally(interp, object, key, &place)) {
    interp->words(property)[kValue] = value;
    return true;
  }
  const BobValue property = findInKinds(interp, interp->typeOf(object), key);
  if (const BobPropertyRow* row = property ? propertyRow(interp, interp->words(property)[kValue]) : nullptr)
    runSetter(interp, row, object, key, value);
  else
    bobAddProperty(interp, object, key, value, place);
  return true;
}
