// Cached lookups: where a key was found the last time at this place in the code.
//
// A cache (object, epoch, property) says that the search for the place's key, begun at that object, ends at that
// property, the object's own or that of an object among its parents. Properties are never removed singly, so this
// holds until the collector moves things, a scope is emptied, or a property is added that hides the one found. For
// the last, objects that a search passed over are marked as watched; adding to one begins a new epoch if the key is
// to be found further up.
#pragma once

#include "bob/heap/interp.h"

enum BobCacheWord { kCacheProperty = 2 };  // after the object and the epoch

inline bool bobCacheHolds(const BobInterp* interp, const uint32_t* cache, BobValue object) {
  uint64_t key;  // the first two words
  std::memcpy(&key, cache, sizeof key);
  return key == (object | interp->cacheEpoch);
}

inline void bobFillCache(const BobInterp* interp, uint32_t* cache, BobValue object, BobValue property) {
  const uint64_t key = object | interp->cacheEpoch;
  std::memcpy(cache, &key, sizeof key);
  cache[kCacheProperty] = property;
}

// The same for a call: of the code that is called, and where its quick code begins.
inline void bobFillCallCache(const BobInterp* interp, uint32_t* cache, BobValue code, uint32_t* entry) {
  bobFillCache(interp, cache, code, 0);
  std::memcpy(cache + kCacheProperty, &entry, sizeof entry);
}
inline uint32_t* bobCachedEntry(const uint32_t* cache) {
  uint32_t* entry;
  std::memcpy(&entry, cache + kCacheProperty, sizeof entry);
  return entry;
}

// The property of the object itself under a symbol, or 0.
inline BobValue bobFindSymbolLocally(BobInterp* interp, BobValue object, BobValue symbol) {
  using namespace BobLayout;
  BobValue property = interp->words(object)[kProperties];
  const uint32_t* store = interp->words(property);
  if (store[0] == kBobHashTable)
    property = store[kBuckets + (interp->words(symbol)[kSymbolHash] & (store[kBucketCount] - 1))];
  while (property != kBobNil) {
    const uint32_t* w = interp->words(property);
    if (w[kKey] == symbol) return property;
    property = w[kNext];
  }
  return 0;
}

// Searches for the symbol from `start` along plain objects and fills the cache for `start`: 0 if it isn't found there.
BobValue bobFindAndCache(BobInterp* interp, BobValue start, BobValue symbol, uint32_t* cache);

// The property that a GET of the symbol from a plain object finds among plain objects, or 0; for an object that the
// cache isn't for.
inline BobValue bobFindCached(BobInterp* interp, BobValue object, BobValue symbol, uint32_t* cache) {
  using namespace BobLayout;
  if (const BobValue property = bobFindSymbolLocally(interp, object, symbol)) {
    bobFillCache(interp, cache, object, property);
    return property;
  }
  const BobValue parent = interp->words(object)[kParent];
  // The key at the place may differ from the last one's, as in o[k].
  if (bobCacheHolds(interp, cache, parent) && interp->words(cache[kCacheProperty])[kKey] == symbol)
    return cache[kCacheProperty];
  return bobFindAndCache(interp, parent, symbol, cache);
}

// The same for a member of a value kind, in its class: what the member is, not what a getter returns. 0 for objects of
// other kinds, and for keys that aren't symbols. The cache is for the word after the class's offset, which is no value,
// since a class under the same cache may be an object as well.
BobValue bobFindMember(BobInterp* interp, BobValue object, BobValue key, uint32_t* cache);

// The general paths. They raise what the instructions raise.
BobValue bobFindGlobalOrFail(BobInterp* interp, BobValue symbol, uint32_t* cache);
BobValue bobGetAnyProperty(BobInterp* interp, BobValue object, BobValue key, uint32_t* cache);
// Stores interp->val. A failure reports the key for a property, but the value for an element.
void bobSetAnyProperty(BobInterp* interp, BobValue object, BobValue key, bool isElement);
// Stores interp->val as a global of the current scope.
void bobSetAnyGlobal(BobInterp* interp, BobValue symbol, uint32_t* cache);
