// The global functions.
#include <algorithm>

#include "bob/bob.h"
#include "bob/kinds.h"

namespace {

BobValue Only(BobInterp* interp) {
  BobValue value;
  bobParse(interp, "**V", &value);
  return value;
}

BobValue Type(BobInterp* interp) { return bobIntern(interp, interp->recordOf(Only(interp))->name); }

BobValue Hash(BobInterp* interp) { return bobMakeInteger(interp, int32_t(bobHash(interp, Only(interp)))); }

// A positive width puts the text to the right, a negative one, or none, to the left. The text is cut at the buffer:
// 512 bytes to the right, 1,024 to the left.
BobValue ToString(BobInterp* interp) {
  BobValue value;
  int32_t width = 0, fill = ' ';
  bobParse(interp, "**V|ii", &value, &width, &fill);
  const bool right = width >= 1;
  const size_t size = right ? 512 : 1024;
  const size_t wanted = std::min<size_t>(right ? uint32_t(width) : 0u - uint32_t(width), size);
  char buffer[1024];
  BobStringOutput output(buffer, size);
  bobDisplay(interp, value, &output);
  std::string text(buffer, output.count());
  if (text.size() < wanted) text.insert(right ? 0 : text.size(), wanted - text.size(), char(fill));
  return bobMakeString(interp, text);
}

// Minimal standard generator, by Schrage's method. A modulus of 0 gives 0.
BobValue Rand(BobInterp* interp) {
  int32_t modulus;
  bobParse(interp, "**i", &modulus);
  int32_t& seed = interp->randomSeed;
  if (seed == 0) seed = 1;
  const int32_t k = seed / 127773;
  seed = (seed - k * 127773) * 16807 - k * 2836;
  if (seed < 0) seed += 2147483647;
  return bobMakeInteger(interp, modulus == 0 || modulus == -1 ? 0 : seed % modulus);
}

BobValue Gc(BobInterp* interp) {
  bobParse(interp, "**");
  bobCollect(interp);
  return kBobNil;
}

BobValue LoadObjectFile(BobInterp* interp) {
  const char* name;
  bobParse(interp, "**S", &name);
  return bobBoolean(bobLoadObjectFile(&interp->scope, name));
}

BobValue Quit(BobInterp* interp) {
  bobParse(interp, "**");
  bobRaise(interp, kBobExit);
}

constexpr BobMethodRow kFunctions[] = {
    {"Type", Type}, {"Hash", Hash},     {"toString", ToString},
    {"rand", Rand}, {"gc", Gc},         {"LoadObjectFile", LoadObjectFile},
    {"Quit", Quit}, {nullptr, nullptr},
};

}  // namespace

BobValue bobMakeValueClass(BobInterp* interp, uint32_t type, const BobMethodRow* methods,
                           const BobPropertyRow* properties) {
  const BobLocal classObject(interp, bobMakeTypeInstance(interp, type));
  bobSetGlobal(&interp->scope, interp->record(type)->name, classObject);
  bobAddMethodRows(interp, classObject, methods);
  bobAddPropertyRows(interp, classObject, properties);
  return classObject;
}

void bobBindFunctions(BobInterp* interp, const BobMethodRow* rows) {
  bobAddMethodRows(interp, interp->scope.object, rows);
}

void bobRegisterGlobals(BobInterp* interp) { bobBindFunctions(interp, kFunctions); }
