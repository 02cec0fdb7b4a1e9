#include "bob/model/objects.h"

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/model/properties.h"
#include "bob/model/values.h"

using namespace BobLayout;

bool bobGetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  return interp->recordOf(object)->GetProperty(interp, object, key, value);
}
bool bobSetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  return interp->recordOf(object)->SetProperty(interp, object, key, value);
}

void bobClearProperties(BobInterp* interp, BobValue object) {
  uint32_t* w = interp->words(object);
  w[kProperties] = kBobNil;
  w[kCount] = 0;
  interp->cacheEpoch += kBobEpoch;
}

BobValue bobCloneObject(BobInterp* interp, BobValue object) {
  const BobLocal from(interp->locals, object);
  const BobLocal to(interp->locals, bobMakeObject(interp, interp->words(object)[kParent]));
  bobCopyProperties(interp, from, to);
  return to;
}

// A search that leaves the plain objects goes on in whatever the last parent is. For a root that is nil, a Symbol: so
// every object answers printName with "nil".
bool bobGetObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  for (; interp->isA(object, kBobObject); object = interp->words(object)[kParent]) {
    if (const BobValue property = bobFindLocally(interp, object, key)) {
      *value = interp->words(property)[kValue];
      return true;
    }
  }
  return bobGetProperty(interp, object, key, value);
}

bool bobSetObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  BobPlace place;
  if (const BobValue property = bobFindLocally(interp, object, key, &place))
    interp->words(property)[kValue] = value;
  else
    bobAddProperty(interp, object, key, value, place);
  return true;
}

BobValue bobNewObject(BobInterp* interp, BobValue parent) { return bobMakeObject(interp, parent); }
