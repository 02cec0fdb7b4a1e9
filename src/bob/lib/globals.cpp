#include "bob/lib/globals.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "bob/heap/collector.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"
#include "bob/model/print.h"
#include "bob/model/properties.h"
#include "bob/model/signature.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"
#include "bob/tools/objectread.h"

namespace {

BobValue only(BobInterp* interp) {
  BobValue value;
  bobParse(interp, "**V", &value);
  return value;
}

BobValue typeName(BobInterp* interp) { return bobIntern(interp, interp->recordOf(only(interp))->name); }

BobValue hashOf(BobInterp* interp) { return bobMakeInteger(interp, int32_t(bobHash(interp, only(interp)))); }

// A positive width aligns the text to the right, a negative one, or none, to the left. The text is cut at the buffer:
// 512 bytes to the right, 1,024 to the left.
BobValue toString(BobInterp* interp) {
  BobValue value;
  int32_t width = 0, fill = ' ';
  bobParse(interp, "**V|ii", &value, &width, &fill);
  const bool right = width >= 1;
  const size_t size = right ? 512 : 1024;
  const size_t wanted = std::min<size_t>(right ? uint32_t(width) : 0u - uint32_t(width), size);
  char buffer[1024];
  size_t length;
  if (interp->isInteger(value)) {  // most are
    length = size_t(std::to_chars(buffer, buffer + size, interp->integerOf(value)).ptr - buffer);
  } else {
    BobStringOutput output(buffer, size);
    bobDisplay(interp, value, &output);
    length = output.count();
  }
  if (length >= wanted) return bobMakeString(interp, {buffer, length});
  std::string text(buffer, length);
  text.insert(right ? 0 : text.size(), wanted - text.size(), char(fill));
  return bobMakeString(interp, text);
}

// Minimal standard generator, by Schrage's method. A modulus of 0 yields 0.
BobValue rand(BobInterp* interp) {
  int32_t modulus;
  bobParse(interp, "**i", &modulus);
  int32_t& seed = interp->randomSeed;
  if (seed == 0) seed = 1;
  const int32_t k = seed / 127773;
  seed = (seed - k * 127773) * 16807 - k * 2836;
  if (seed < 0) seed += 2147483647;
  return bobMakeInteger(interp, modulus == 0 || modulus == -1 ? 0 : seed % modulus);
}

BobValue gc(BobInterp* interp) {
  bobParse(interp, "**");
  bobCollect(interp);
  return kBobNil;
}

BobValue loadObjectFile(BobInterp* interp) {
  const char* name;
  bobParse(interp, "**S", &name);
  return bobBoolean(bobLoadObjectFile(&interp->scope, name));
}

BobValue quit(BobInterp* interp) {
  bobParse(interp, "**");
  bobRaise(interp, kBobExit);
}

constexpr BobMethodRow kFunctions[] = {
    {"Type", typeName}, {"Hash", hashOf},   {"toString", toString},
    {"rand", rand},     {"gc", gc},         {"LoadObjectFile", loadObjectFile},
    {"Quit", quit},     {nullptr, nullptr},
};

}  // namespace

void bobRegisterGlobals(BobInterp* interp) { bobBindFunctions(interp, kFunctions); }
