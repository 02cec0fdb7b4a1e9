#include "bob/model/properties.h"

#include <algorithm>

#include "bob/heap/heap.h"
#include "bob/heap/local.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kChainLimit = 4;  // properties that a chain holds at most; also the first table's buckets
constexpr uint32_t kMaxBuckets = 65536;

BobValue findInChain(BobInterp* interp, BobValue property, BobValue key) {
  if (interp->isA(key, kBobSymbol)) {  // a symbol equals only itself
    while (property != kBobNil) {
      const uint32_t* w = interp->words(property);
      if (w[kKey] == key) return property;
      property = w[kNext];
    }
    return 0;
  }
  for (; property != kBobNil; property = interp->words(property)[kNext])
    if (bobEqual(interp, interp->words(property)[kKey], key)) return property;
  return 0;
}

BobValue makeTable(BobInterp* interp, uint32_t buckets) {
  const BobValue table = bobAllocate(interp, (buckets + kBuckets) * 4);
  uint32_t* w = interp->words(table);
  w[0] = kBobHashTable;
  w[kBucketCount] = buckets;
  std::fill_n(w + kBuckets, buckets, kBobNil);
  return table;
}

void pushProperty(BobInterp* interp, uint32_t* head, BobValue property) {
  interp->words(property)[kNext] = *head;
  *head = property;
}

// Splits every bucket of the object's table in two. That reverses the order within a bucket.
void growTable(BobInterp* interp, BobValue object) {
  const uint32_t old = interp->words(interp->words(object)[kProperties])[kBucketCount];
  if (2 * old > kMaxBuckets) return;
  const BobLocal keep(interp->locals, object);
  const BobValue grown = makeTable(interp, 2 * old);
  uint32_t* to = interp->words(grown) + kBuckets;
  const uint32_t* from = interp->words(interp->words(keep)[kProperties]) + kBuckets;
  for (uint32_t i = 0; i < old; ++i) {
    for (BobValue p = from[i]; p != kBobNil;) {
      const BobValue next = interp->words(p)[kNext];
      pushProperty(interp, to + (bobHash(interp, interp->words(p)[kKey]) & old ? i + old : i), p);
      p = next;
    }
  }
  interp->words(keep)[kProperties] = grown;
}

void chainToTable(BobInterp* interp, BobValue object) {
  const BobLocal keep(interp->locals, object);
  const BobValue table = makeTable(interp, kChainLimit);
  uint32_t* buckets = interp->words(table) + kBuckets;
  for (BobValue p = interp->words(keep)[kProperties]; p != kBobNil;) {
    const BobValue next = interp->words(p)[kNext];
    pushProperty(interp, buckets + (bobHash(interp, interp->words(p)[kKey]) & (kChainLimit - 1)), p);
    p = next;
  }
  interp->words(keep)[kProperties] = table;
}

// Cached lookups that passed over the object may have found the key further up.
void forgetHidden(BobInterp* interp, BobValue object, BobValue key) {
  if (!(interp->words(object)[kCount] & kBobWatched)) return;
  const BobValue parent = interp->words(object)[kParent];
  if (interp->isObject(parent) && bobFindAlongParents(interp, parent, key)) interp->cacheEpoch += kBobEpoch;
}

}  // namespace

BobValue bobFindLocally(BobInterp* interp, BobValue object, BobValue key, BobPlace* place) {
  const BobValue store = interp->words(object)[kProperties];
  const uint32_t* table = interp->words(store);
  if (table[0] != kBobHashTable) {
    if (place) *place = {};
    return findInChain(interp, store, key);
  }
  const uint32_t hash = interp->isA(key, kBobSymbol) ? interp->words(key)[kSymbolHash] : bobHash(interp, key);
  const uint32_t bucket = hash & (table[kBucketCount] - 1);
  if (place) *place = {hash, int32_t(bucket)};
  return findInChain(interp, table[kBuckets + bucket], key);
}

BobValue bobFindAlongParents(BobInterp* interp, BobValue object, BobValue key) {
  for (; interp->isObject(object); object = interp->words(object)[kParent])
    if (const BobValue property = bobFindLocally(interp, object, key)) return property;
  return 0;
}

void bobAddProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  BobPlace place;
  const BobValue store = interp->words(object)[kProperties];
  if (interp->isA(store, kBobHashTable)) {
    place.hash = bobHash(interp, key);
    place.bucket = int32_t(place.hash & (interp->words(store)[kBucketCount] - 1));
  }
  bobAddProperty(interp, object, key, value, place);
}

void bobAddProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value, BobPlace place) {
  const BobLocal keep(interp->locals, object), keepKey(interp->locals, key), keepValue(interp->locals, value);
  const BobLocal property(interp->locals, bobAllocate(interp, 16));
  uint32_t* w = interp->words(property);
  w[0] = kBobProperty;
  w[kKey] = keepKey;
  w[kValue] = keepValue;
  w[kNext] = kBobNil;

  const uint32_t count = bobPropertyCount(interp, keep);
  if (place.bucket >= 0) {
    uint32_t buckets = interp->words(interp->words(keep)[kProperties])[kBucketCount];
    if (count >= 2 * buckets) growTable(interp, keep);
    uint32_t* table = interp->words(interp->words(keep)[kProperties]);
    pushProperty(interp, table + kBuckets + (place.hash & (table[kBucketCount] - 1)), property);
  } else if (count < kChainLimit) {
    pushProperty(interp, interp->words(keep) + kProperties, property);
  } else {
    chainToTable(interp, keep);
    uint32_t* table = interp->words(interp->words(keep)[kProperties]);
    pushProperty(interp, table + kBuckets + (bobHash(interp, keepKey) & (kChainLimit - 1)), property);
  }
  forgetHidden(interp, keep, keepKey);
  ++interp->words(keep)[kCount];
}

// The copies keep their order and, in a table, their buckets.
void bobCopyProperties(BobInterp* interp, BobValue fromObject, BobValue toObject) {
  const BobLocal from(interp->locals, fromObject), to(interp->locals, toObject);
  const BobValue store = interp->words(from)[kProperties];
  const bool isTable = interp->isA(store, kBobHashTable);
  const uint32_t chains = isTable ? interp->words(store)[kBucketCount] : 1;
  if (isTable) {
    const BobValue table = makeTable(interp, chains);
    interp->words(to)[kProperties] = table;
  }
  const auto head = [&](BobValue owner, uint32_t chain) {
    uint32_t* properties = interp->words(owner) + kProperties;
    return isTable ? interp->words(*properties) + kBuckets + chain : properties;
  };
  for (uint32_t i = 0; i < chains; ++i) {
    BobLocal next(interp->locals, *head(from, i)), last(interp->locals, kBobNil);
    while (next != kBobNil) {
      const BobValue copy = bobAllocate(interp, 16);
      std::copy_n(interp->words(next), 4, interp->words(copy));
      next.value = interp->words(next)[kNext];
      interp->words(copy)[kNext] = kBobNil;
      *(last == kBobNil ? head(to, i) : interp->words(last) + kNext) = copy;
      last.value = copy;
    }
  }
  interp->words(to)[kCount] = bobPropertyCount(interp, from);
}
