#include "bob/lookup.h"

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
