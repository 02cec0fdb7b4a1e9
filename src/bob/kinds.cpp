// Native kinds and the members of value kinds: lookup through class objects, and the rows that fill them.
#include <new>

#include "bob/bob.h"
#include "bob/kinds.h"

using namespace BobLayout;

namespace {

const BobPropertyRow* PropertyRow(BobInterp* interp, BobValue value) {
  return interp->isA(value, kBobVPMethod) ? interp->staticRows[interp->words(value)[kRowIndex]].property : nullptr;
}

void RunSetter(BobInterp* interp, const BobPropertyRow* row, BobValue object, BobValue key, BobValue value) {
  if (!row->setter) bobRaise(interp, kBobReadOnly, key);
  row->setter(interp, object, value);
}

// The property under the key in the class of the kind or of one further up, or 0.
BobValue FindInKinds(BobInterp* interp, uint32_t type, BobValue key) {
  for (; type; type = interp->record(type)->parentType) {
    const BobValue classObject = interp->record(type)->classObject;
    if (!classObject) continue;
    if (const BobValue property = bobFindLocally(interp, classObject, key)) return property;
  }
  return 0;
}

BobValue NewOfType(BobInterp* interp, BobValue type) {
  const uint32_t record = interp->words(type)[kNativePointer];
  return interp->record(record)->New(interp, type);
}

BobValue NewInstanceOfKind(BobInterp* interp, BobValue value) {
  // Reached with the class (new File) and with an instance (new stdout); both make an instance of the kind.
  const bool isClass = interp->typeOf(value) == interp->typeClass;
  return bobMakeInstance(interp, isClass ? interp->words(value)[kNativePointer] : interp->typeOf(value));
}

BobValue AddRow(BobInterp* interp, uint32_t type, uint32_t words, const BobStaticRow& row) {
  const uint32_t object = bobAllocateStatic(interp, words * 4);
  if (!object) bobRaise(interp, kBobInsufficientMemory);
  interp->words(object)[0] = type;
  interp->words(object)[kRowIndex] = uint32_t(interp->staticRows.size());
  interp->staticRows.push_back(row);
  return object;
}

void AddRowProperty(BobInterp* interp, BobValue object, const char* name, BobValue row) {
  const BobLocal keep(interp, object);
  const BobValue symbol = bobIntern(interp, name);
  bobSetProperty(interp, keep, symbol, row);
}

}  // namespace

BobValue bobDeliver(BobInterp* interp, BobValue object, BobValue key, BobValue found) {
  const BobPropertyRow* row = PropertyRow(interp, found);
  if (!row) return found;
  if (!row->getter) bobRaise(interp, kBobWriteOnly, key);
  return row->getter(interp, object);
}

BobValue bobClassOf(BobInterp* interp, BobValue value) {
  switch (interp->recordOf(value)->base) {
    case kBobMethod: return interp->methodClass;
    case kBobVector: return interp->vectorClass;
    case kBobSymbol: return interp->symbolClass;
    case kBobString: return interp->stringClass;
    case kBobInteger: return interp->integerClass;
    default: return interp->floatClass;
  }
}

bool bobGetValueProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  const BobValue property = bobFindLocally(interp, bobClassOf(interp, object), key);
  if (!property) return false;
  *value = bobDeliver(interp, object, key, interp->words(property)[kValue]);
  return true;
}

// Only a property row takes a value: nothing can be hung on a number or a string.
bool bobSetValueProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  const BobValue property = bobFindLocally(interp, bobClassOf(interp, object), key);
  const BobPropertyRow* row = property ? PropertyRow(interp, interp->words(property)[kValue]) : nullptr;
  if (!row) return false;
  RunSetter(interp, row, object, key, value);
  return true;
}

// The instance's own parent word is not consulted.
bool bobGetCObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  BobValue property = bobFindLocally(interp, object, key);
  if (!property) property = FindInKinds(interp, interp->typeOf(object), key);
  if (!property) return false;
  *value = bobDeliver(interp, object, key, interp->words(property)[kValue]);
  return true;
}

bool bobSetCObjectProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  BobPlace place;
  if (const BobValue property = bobFindLocally(interp, object, key, &place)) {
    interp->words(property)[kValue] = value;
    return true;
  }
  const BobValue property = FindInKinds(interp, interp->typeOf(object), key);
  if (const BobPropertyRow* row = property ? PropertyRow(interp, interp->words(property)[kValue]) : nullptr)
    RunSetter(interp, row, object, key, value);
  else
    bobAddProperty(interp, object, key, value, place);
  return true;
}

BobValue bobMakeInstance(BobInterp* interp, uint32_t type) {
  const uint32_t size = kCObjectWords * 4 + interp->record(type)->extraSize;
  const BobValue object = bobAllocate(interp, size);
  uint32_t* w = interp->words(object);
  std::memset(w, 0, size);
  w[0] = type;
  w[kParent] = w[kProperties] = kBobNil;
  w[kFinalizeLink] = interp->newSpace.finalizeList;
  interp->newSpace.finalizeList = object;
  return object;
}

BobValue bobNewCObject(BobInterp* interp, BobValue value) { return NewInstanceOfKind(interp, value); }

void bobAddMethodRows(BobInterp* interp, BobValue object, const BobMethodRow* rows) {
  const BobLocal keep(interp, object);
  for (; rows && rows->name; ++rows)
    AddRowProperty(interp, keep, rows->name, AddRow(interp, kBobCMethod, 3, {rows, nullptr}));
}

void bobAddPropertyRows(BobInterp* interp, BobValue object, const BobPropertyRow* rows) {
  const BobLocal keep(interp, object);
  for (; rows && rows->name; ++rows)
    AddRowProperty(interp, keep, rows->name, AddRow(interp, kBobVPMethod, 4, {nullptr, rows}));
}

BobValue bobMakeClass(BobInterp* interp, const char* name, BobValue parent, const BobMethodRow* methods) {
  const BobLocal object(interp, bobMakeObject(interp, parent));
  if (name) bobSetGlobal(&interp->scope, name, object);
  bobAddMethodRows(interp, object, methods);
  return object;
}

BobValue bobMakeTypeInstance(BobInterp* interp, uint32_t type) {
  const BobValue instance = bobMakeInstance(interp, interp->typeClass);
  interp->words(instance)[kNativePointer] = type;
  return instance;
}

static uint32_t bobMakeKindRecord(BobInterp* interp, uint32_t parentKind, const char* name, uint32_t extraSize) {
  const uint32_t type = bobAllocateStatic(interp, kBobTypeRecordSize);
  if (!type) return 0;
  interp->countNative(15 * 4 + uint32_t(std::strlen(name)) + 1);
  BobTypeRecord* record = new (interp->bytes(type)) BobTypeRecord(*interp->record(kBobCObject));
  interp->typeNames.push_back(std::make_unique<std::string>(name));
  record->name = interp->typeNames.back()->c_str();
  record->base = type;
  record->classObject = 0;
  record->extraSize = extraSize;
  record->parentType = parentKind;
  record->nextType = interp->typeList;
  interp->typeList = type;
  return type;
}

uint32_t bobMakeKind(BobInterp* interp, uint32_t parentKind, const char* name, const BobMethodRow* methods,
                     const BobPropertyRow* properties, uint32_t extraSize) {
  const uint32_t type = bobMakeKindRecord(interp, parentKind, name, (extraSize + 3) & ~3u);
  if (!type) return 0;
  const BobLocal classObject(interp, bobMakeTypeInstance(interp, type));
  bobSetGlobal(&interp->scope, name, classObject);
  interp->record(type)->classObject = classObject;
  bobAddMethodRows(interp, classObject, methods);
  bobAddPropertyRows(interp, classObject, properties);
  return type;
}

void bobSetFinalizer(BobInterp* interp, uint32_t kind, void (*finalizer)(BobInterp*, BobValue)) {
  interp->record(kind)->finalizer = finalizer;
}

void bobMakeTypeKind(BobInterp* interp) {
  interp->typeClass = bobMakeKindRecord(interp, 0, "Type", 4);
  BobTypeRecord* record = interp->record(interp->typeClass);
  record->New = NewOfType;
  record->Print = bobPrintType;
  const BobValue classObject = bobMakeTypeInstance(interp, interp->typeClass);
  interp->record(interp->typeClass)->classObject = classObject;
  bobSetGlobal(&interp->scope, "Type", classObject);
}
