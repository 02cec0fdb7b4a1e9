// Property storage and lookup of plain objects, and scopes.
#include "bob/objects.h"

#include <algorithm>

using namespace BobLayout;

namespace {

constexpr uint32_t kChainLimit = 4;  // properties that a chain holds at most; also the first table's buckets
constexpr uint32_t kMaxBuckets = 65536;
constexpr uint32_t kScopeSize = 12;  // what the native allocator counts for a scope record

bool IsSymbol(BobInterp* interp, BobValue value) { return interp->typeOf(value) == kBobSymbol; }

BobValue FindInChain(BobInterp* interp, BobValue property, BobValue key) {
  if (IsSymbol(interp, key)) {  // a symbol equals only itself
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

BobValue MakeTable(BobInterp* interp, uint32_t buckets) {
  const BobValue table = bobAllocate(interp, (buckets + kBuckets) * 4);
  uint32_t* w = interp->words(table);
  w[0] = kBobHashTable;
  w[kBucketCount] = buckets;
  std::fill_n(w + kBuckets, buckets, kBobNil);
  return table;
}

void PushProperty(BobInterp* interp, uint32_t* head, BobValue property) {
  interp->words(property)[kNext] = *head;
  *head = property;
}

// Splits every bucket of the object's table in two. The order within a bucket is turned round by that.
void GrowTable(BobInterp* interp, BobValue object) {
  const uint32_t old = interp->words(interp->words(object)[kProperties])[kBucketCount];
  if (2 * old > kMaxBuckets) return;
  const BobLocal keep(interp, object);
  const BobValue grown = MakeTable(interp, 2 * old);
  uint32_t* to = interp->words(grown) + kBuckets;
  const uint32_t* from = interp->words(interp->words(keep)[kProperties]) + kBuckets;
  for (uint32_t i = 0; i < old; ++i) {
    for (BobValue p = from[i]; p != kBobNil;) {
      const BobValue next = interp->words(p)[kNext];
      PushProperty(interp, to + (bobHash(interp, interp->words(p)[kKey]) & old ? i + old : i), p);
      p = next;
    }
  }
  interp->words(keep)[kProperties] = grown;
}

void ChainToTable(BobInterp* interp, BobValue object) {
  const BobLocal keep(interp, object);
  const BobValue table = MakeTable(interp, kChainLimit);
  uint32_t* buckets = interp->words(table) + kBuckets;
  for (BobValue p = interp->words(keep)[kProperties]; p != kBobNil;) {
    const BobValue next = interp->words(p)[kNext];
    PushProperty(interp, buckets + (bobHash(interp, interp->words(p)[kKey]) & (kChainLimit - 1)), p);
    p = next;
  }
  interp->words(keep)[kProperties] = table;
}

// Cached lookups that passed over the object may have found the key further up.
void ForgetHidden(BobInterp* interp, BobValue object, BobValue key) {
  if (!(interp->words(object)[kCount] & kBobWatched)) return;
  const BobValue parent = interp->words(object)[kParent];
  if (interp->isObject(parent) && bobFindAlongParents(interp, parent, key)) ++interp->cacheEpoch;
}

}  // namespace

BobValue bobFindLocally(BobInterp* interp, BobValue object, BobValue key, BobPlace* place) {
  const BobValue store = interp->words(object)[kProperties];
  const uint32_t* table = interp->words(store);
  if (table[0] != kBobHashTable) {
    if (place) *place = {};
    return FindInChain(interp, store, key);
  }
  const uint32_t hash = IsSymbol(interp, key) ? interp->words(key)[kSymbolHash] : bobHash(interp, key);
  const uint32_t bucket = hash & (table[kBucketCount] - 1);
  if (place) *place = {hash, int32_t(bucket)};
  return FindInChain(interp, table[kBuckets + bucket], key);
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
  const BobLocal keep(interp, object), keepKey(interp, key), keepValue(interp, value);
  const BobLocal property(interp, bobAllocate(interp, 16));
  uint32_t* w = interp->words(property);
  w[0] = kBobProperty;
  w[kKey] = keepKey;
  w[kValue] = keepValue;
  w[kNext] = kBobNil;

  const uint32_t count = bobPropertyCount(interp, keep);
  if (place.bucket >= 0) {
    uint32_t buckets = interp->words(interp->words(keep)[kProperties])[kBucketCount];
    if (count >= 2 * buckets) GrowTable(interp, keep);
    uint32_t* table = interp->words(interp->words(keep)[kProperties]);
    PushProperty(interp, table + kBuckets + (place.hash & (table[kBucketCount] - 1)), property);
  } else if (count < kChainLimit) {
    PushProperty(interp, interp->words(keep) + kProperties, property);
  } else {
    ChainToTable(interp, keep);
    uint32_t* table = interp->words(interp->words(keep)[kProperties]);
    PushProperty(interp, table + kBuckets + (bobHash(interp, keepKey) & (kChainLimit - 1)), property);
  }
  ForgetHidden(interp, keep, keepKey);
  ++interp->words(keep)[kCount];
}

void bobClearProperties(BobInterp* interp, BobValue object) {
  uint32_t* w = interp->words(object);
  w[kProperties] = kBobNil;
  w[kCount] = 0;
  ++interp->cacheEpoch;
}

// The copies keep their order and, in a table, their buckets.
BobValue bobCloneObject(BobInterp* interp, BobValue object) {
  const BobLocal from(interp, object);
  const BobLocal to(interp, bobMakeObject(interp, interp->words(object)[kParent]));
  const BobValue store = interp->words(from)[kProperties];
  const bool isTable = interp->isA(store, kBobHashTable);
  const uint32_t chains = isTable ? interp->words(store)[kBucketCount] : 1;
  if (isTable) {
    const BobValue table = MakeTable(interp, chains);
    interp->words(to)[kProperties] = table;
  }
  const auto head = [&](BobValue owner, uint32_t chain) {
    uint32_t* properties = interp->words(owner) + kProperties;
    return isTable ? interp->words(*properties) + kBuckets + chain : properties;
  };
  for (uint32_t i = 0; i < chains; ++i) {
    BobLocal next(interp, *head(from, i)), last(interp);
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

bool bobFindGlobal(BobInterp* interp, BobValue scopeObject, BobValue symbol, BobValue* value) {
  const BobValue property = bobFindAlongParents(interp, scopeObject, symbol);
  if (!property) return false;
  *value = interp->words(property)[kValue];
  return true;
}

void bobSetGlobal(BobScope* scope, std::string_view name, BobValue value) {
  const BobLocal keep(scope->interp, value);
  const BobValue symbol = bobIntern(scope->interp, name);
  bobSetProperty(scope->interp, scope->object, symbol, keep);
}

BobScope* bobMakeScope(BobScope* parent) {
  BobInterp* interp = parent->interp;
  const BobValue object = bobMakeObject(interp, parent->object);
  auto* scope = new BobScope{interp, object, interp->scopes};
  interp->scopes = scope;
  interp->countNative(kScopeSize);
  return scope;
}

void bobReleaseScope(BobScope* scope) {
  BobInterp* interp = scope->interp;
  if (scope == &interp->scope || scope == &interp->rootScope) return;
  BobScope** link = &interp->scopes;
  while (*link != scope) link = &(*link)->next;
  *link = scope->next;
  interp->uncountNative(kScopeSize);
  delete scope;
}
