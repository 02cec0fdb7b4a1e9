#include "bob/model/strings.h"

#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/members.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

uint8_t* byteAt(BobInterp* interp, BobValue string, BobValue key) {
  const int32_t index = interp->integerOf(key);
  if (index < 0 || uint32_t(index) >= interp->stringOf(string).size()) bobRaise(interp, kBobIndexOutOfBounds, key);
  return interp->bytes(string) + kStringBytes + index;
}

}  // namespace

bool bobGetStringProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  if (!interp->isInteger(key)) return bobGetValueProperty(interp, object, key, value);
  *value = bobSmall(*byteAt(interp, object, key));
  return true;
}

bool bobSetStringProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  if (!interp->isInteger(key)) return bobSetValueProperty(interp, object, key, value);
  if (!interp->isInteger(value)) bobRaise(interp, kBobWrongType, value);
  *byteAt(interp, object, key) = uint8_t(interp->integerOf(value));
  return true;
}

BobValue bobNewString(BobInterp* interp, BobValue) { return bobMakeEmptyString(interp, 0); }
