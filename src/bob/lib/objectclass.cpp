#include "bob/lib/objectclass.h"

#include <algorithm>

#include "bob/base/stream.h"
#include "bob/heap/stack.h"
#include "bob/lib/fileclass.h"
#include "bob/lib/spread.h"
#include "bob/model/kinds.h"
#include "bob/model/objects.h"
#include "bob/model/print.h"
#include "bob/model/properties.h"
#include "bob/model/signature.h"
#include "bob/run/invoke.h"

using namespace BobLayout;

namespace {

BobValue thisOf(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobObject, &self);
  return self;
}

BobValue initialize(BobInterp* interp) { return thisOf(interp); }

BobValue classOf(BobInterp* interp) { return interp->words(thisOf(interp))[kParent]; }

BobValue clone(BobInterp* interp) { return bobCloneObject(interp, thisOf(interp)); }

BobValue exists(BobInterp* interp) {
  if (interp->argc == 3 && interp->isA(interp->argv[-1], kBobObject))  // without reading the signature
    return bobBoolean(bobFindAlongParents(interp, interp->argv[-1], interp->argv[-3]));
  BobValue self, key;
  bobParse(interp, "V=*V", kBobObject, &self, &key);
  return bobBoolean(bobFindAlongParents(interp, self, key));
}

BobValue existsLocally(BobInterp* interp) {
  BobValue self, key;
  bobParse(interp, "V=*V", kBobObject, &self, &key);
  return bobBoolean(bobFindLocally(interp, self, key));
}

BobValue show(BobInterp* interp) {
  BobValue self, file = kBobNil;
  bobParse(interp, "V=*|V=", kBobObject, &self, interp->fileKind, &file);
  BobStream* stream = bobOutputFor(interp, file);
  if (!stream) return kBobNil;
  bobPutText(stream, "Class: ");
  bobPrint(interp, interp->words(self)[kParent], stream);
  bobPutText(stream, "\nProperties:\n");
  bobForEachProperty(interp, self, [&](BobValue property) {
    bobPutText(stream, "  ");
    bobPrint(interp, interp->words(property)[kKey], stream);
    bobPutText(stream, ": ");
    bobPrint(interp, interp->words(property)[kValue], stream);
    bobPutText(stream, "\n");
  });
  return kBobNil;
}

// obj.Send(selector, a, ..., vector)
BobValue sendFromScript(BobInterp* interp) {
  bobCheckArgumentCount(interp, 3);
  uint32_t* const argv = interp->argv;
  const int argc = interp->argc;
  if (!bobIsOfKind(interp, argv[-1], kBobObject)) bobRaise(interp, kBobWrongType, argv[-1]);
  const BobValue vector = bobLastVectorArgument(interp, argv, argc);  // alone it is the selector as well
  bobCheckStack(interp, uint32_t(argc));
  bobPush(interp, argv[-1]);
  bobPush(interp, argv[-3]);
  bobPush(interp, argv[-1]);
  for (int i = 4; i < argc; ++i) bobPush(interp, argv[-i]);
  const int elements = bobPushElements(interp, vector);
  return bobRunSend(interp, std::max(argc - 4, 0) + 2 + elements);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize},       {"Class", classOf},       {"Clone", clone}, {"Exists", exists},
    {"ExistsLocally", existsLocally}, {"Send", sendFromScript}, {"Show", show},   {nullptr, nullptr},
};

}  // namespace

void bobInitObjectClass(BobInterp* interp) { interp->objectClass = bobMakeClass(interp, "Object", kBobNil, kMethods); }
