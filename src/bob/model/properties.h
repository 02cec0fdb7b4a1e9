// Where an object keeps its properties: up to four in a chain, newest first, more in a hash table.
//
// Keys are matched by the language's equality, so 1, 1.0 and a boxed 1 are one key in a chain; in a table a Float
// hashes apart.
#pragma once

#include "bob/heap/interp.h"

// Where a key was looked for: the hash counts only when bucket is not negative, that is in a table.
struct BobPlace {
  uint32_t hash = 0;
  int32_t bucket = -1;
};

inline uint32_t bobHash(BobInterp* interp, BobValue value) { return interp->recordOf(value)->Hash(interp, value); }

// The Property of the object itself, or 0.
BobValue bobFindLocally(BobInterp* interp, BobValue object, BobValue key, BobPlace* place = nullptr);
// Along the parents for as long as they are of the Object family, or 0.
BobValue bobFindAlongParents(BobInterp* interp, BobValue object, BobValue key);
// Adds a property that the object doesn't have.
void bobAddProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value);
void bobAddProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value, BobPlace place);
// A new store of the same properties, in the same order, for `to`, which has none.
void bobCopyProperties(BobInterp* interp, BobValue from, BobValue to);
inline uint32_t bobPropertyCount(BobInterp* interp, BobValue object) {
  return interp->words(object)[BobLayout::kCount] & ~kBobWatched;
}

// Calls `visit` with each Property, in the order that listings have: chain order, or a table's buckets in order. The
// object must not change meanwhile.
template <typename Visit>
void bobForEachProperty(BobInterp* interp, BobValue object, Visit visit) {
  using namespace BobLayout;
  const BobValue store = interp->words(object)[kProperties];
  const bool table = interp->isA(store, kBobHashTable);
  const uint32_t chains = table ? interp->words(store)[kBucketCount] : 1;
  for (uint32_t i = 0; i < chains; ++i)
    for (BobValue p = table ? interp->words(store)[kBuckets + i] : store; p != kBobNil; p = interp->words(p)[kNext])
      visit(p);
}
