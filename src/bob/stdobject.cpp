// The methods of Object.
#include "bob/bob.h"

using namespace BobLayout;

namespace {

BobValue This(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobObject, &self);
  return self;
}

BobValue Initialize(BobInterp* interp) { return This(interp); }

BobValue Class(BobInterp* interp) { return interp->words(This(interp))[kParent]; }

BobValue Clone(BobInterp* interp) { return bobCloneObject(interp, This(interp)); }

BobValue Exists(BobInterp* interp) {
  BobValue self, key;
  bobParse(interp, "V=*V", kBobObject, &self, &key);
  return bobBoolean(bobFindAlongParents(interp, self, key));
}

BobValue ExistsLocally(BobInterp* interp) {
  BobValue self, key;
  bobParse(interp, "V=*V", kBobObject, &self, &key);
  return bobBoolean(bobFindLocally(interp, self, key));
}

BobValue Show(BobInterp* interp) {
  BobValue self, file = kBobNil;
  bobParse(interp, "V=*|V=", kBobObject, &self, interp->fileKind, &file);
  BobStream* stream = file == kBobNil ? interp->stdoutStream : bobFileStream(interp, file);
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

constexpr BobMethodRow kMethods[] = {
    {"initialize", Initialize},
    {"Class", Class},
    {"Clone", Clone},
    {"Exists", Exists},
    {"ExistsLocally", ExistsLocally},
    {"Send", bobSendFromScript},
    {"Show", Show},
    {nullptr, nullptr},
};

}  // namespace

void bobInitObjectClass(BobInterp* interp) { interp->objectClass = bobMakeClass(interp, "Object", kBobNil, kMethods); }
