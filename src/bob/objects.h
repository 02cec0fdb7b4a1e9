// Making and reading values, property storage and lookup, and scopes.
//
// An object keeps up to four properties in a chain, newest first, and more in a hash table. Keys are matched by the
// language's equality, so 1, 1.0 and a boxed 1 are one key in a chain; in a table a Float hashes apart.
#pragma once

#include <string_view>

#include "bob/heap.h"

// -- values

constexpr uint32_t bobStringSize(uint32_t length) { return ((length + 4) & ~3u) + 8; }

BobValue bobMakeBoxed(BobInterp* interp, int32_t n);
inline BobValue bobMakeInteger(BobInterp* interp, int32_t n) {
  return bobFitsSmall(n) ? bobSmall(n) : bobMakeBoxed(interp, n);
}
BobValue bobMakeFloat(BobInterp* interp, double number);
BobValue bobMakeString(BobInterp* interp, std::string_view text);  // text must not lie in the heap
BobValue bobMakeEmptyString(BobInterp* interp, uint32_t length);   // all zero bytes
BobValue bobMakeVector(BobInterp* interp, uint32_t size);          // all nil
BobValue bobMakeCode(BobInterp* interp, uint32_t count);           // all nil
BobValue bobMakeEnvironment(BobInterp* interp, uint32_t count);    // all nil
BobValue bobMakeMethod(BobInterp* interp, BobValue code, BobValue env, BobValue scope);
BobValue bobMakeObject(BobInterp* interp, BobValue parent);

inline bool bobIsInteger(BobInterp* interp, BobValue value) {
  return bobIsSmall(value) || *interp->words(value) == kBobInteger;
}
inline int32_t bobIntegerValue(BobInterp* interp, BobValue value) {
  return bobIsSmall(value) ? bobSmallValue(value) : int32_t(interp->words(value)[BobLayout::kIntegerValue]);
}
inline double bobFloatValue(BobInterp* interp, BobValue value) {
  double number;
  std::memcpy(&number, interp->words(value) + BobLayout::kFloatWords, sizeof number);
  return number;
}
// Views into the heap: gone with the next allocation.
inline std::string_view bobStringText(BobInterp* interp, BobValue value) {
  return {reinterpret_cast<const char*>(interp->bytes(value)) + BobLayout::kStringBytes,
          interp->words(value)[BobLayout::kStringLength]};
}
inline std::string_view bobSymbolText(BobInterp* interp, BobValue value) {
  return {reinterpret_cast<const char*>(interp->bytes(value)) + BobLayout::kSymbolBytes,
          interp->words(value)[BobLayout::kSymbolLength]};
}

// Equality of the language: numbers by value, strings by contents, everything else by identity. A NaN equals every
// number.
bool bobEqual(BobInterp* interp, BobValue left, BobValue right);

// -- vectors: everything goes through the vector that a moved one became

inline BobValue bobVectorTarget(BobInterp* interp, BobValue vector) {
  const uint32_t* w = interp->words(vector);
  return w[0] == kBobMovedVector ? w[BobLayout::kMovedTo] : vector;
}
inline uint32_t bobVectorSize(BobInterp* interp, BobValue vector) {
  return interp->words(bobVectorTarget(interp, vector))[BobLayout::kSize];
}
// Grows or shrinks to `size` elements, new ones nil. The vector in hand stays valid: it points at a larger one then.
void bobSetVectorSize(BobInterp* interp, BobValue vector, uint32_t size);

// -- properties

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
// Drops all properties.
void bobClearProperties(BobInterp* interp, BobValue object);
BobValue bobCloneObject(BobInterp* interp, BobValue object);
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

// -- the slots of the type records

bool bobGetObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewObject(BobInterp*, BobValue parent);
bool bobGetCObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetCObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewCObject(BobInterp*, BobValue value);
BobValue bobMakeInstance(BobInterp*, uint32_t type);
bool bobGetValueProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetValueProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
bool bobGetStringProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetStringProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewString(BobInterp*, BobValue value);
bool bobGetVectorProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetVectorProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewVector(BobInterp*, BobValue value);

// The class object whose members a value of this kind has: Method, Symbol, Integer, Float, String, Vector.
BobValue bobClassOf(BobInterp* interp, BobValue value);

inline bool bobGetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  return interp->recordOf(object)->GetProperty(interp, object, key, value);
}
inline bool bobSetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  return interp->recordOf(object)->SetProperty(interp, object, key, value);
}

// -- scopes

// The value of a global seen from the scope object: false if unbound.
bool bobFindGlobal(BobInterp* interp, BobValue scopeObject, BobValue symbol, BobValue* value);
// Binds in the scope itself.
void bobSetGlobal(BobScope* scope, std::string_view name, BobValue value);
BobScope* bobMakeScope(BobScope* parent);
void bobReleaseScope(BobScope* scope);
