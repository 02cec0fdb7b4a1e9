#include "bob/model/kinds.h"

#include <new>

#include "bob/heap/handles.h"
#include "bob/heap/heap.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/objects.h"
#include "bob/model/print.h"
#include "bob/model/scopes.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

BobValue newOfType(BobInterp* interp, BobValue type) {
  const uint32_t record = interp->words(type)[kNativePointer];
  return interp->record(record)->New(interp, type);
}

BobValue addRow(BobInterp* interp, uint32_t type, uint32_t words, const BobStaticRow& row) {
  const uint32_t object = bobAllocateStatic(interp, words * 4);
  if (!object) bobRaise(interp, kBobInsufficientMemory);
  interp->words(object)[0] = type;
  interp->words(object)[kRowIndex] = uint32_t(interp->staticRows.size());
  interp->staticRows.push_back(row);
  return object;
}

void addRowProperty(BobInterp* interp, BobValue object, const char* name, BobValue row) {
  const BobLocal keep(interp->locals, object);
  const BobValue symbol = bobIntern(interp, name);
  bobSetProperty(interp, keep, symbol, row);
}

BobValue makeTypeInstance(BobInterp* interp, uint32_t type) {
  const BobValue instance = bobMakeNative(interp, interp->typeClass);
  interp->words(instance)[kNativePointer] = type;
  return instance;
}

uint32_t makeKindRecord(BobInterp* interp, uint32_t parentKind, const char* name, uint32_t extraSize) {
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

}  // namespace

void bobAddMethodRows(BobInterp* interp, BobValue object, const BobMethodRow* rows) {
  const BobLocal keep(interp->locals, object);
  for (; rows && rows->name; ++rows)
    addRowProperty(interp, keep, rows->name, addRow(interp, kBobCMethod, 3, {rows, nullptr}));
}

void bobAddPropertyRows(BobInterp* interp, BobValue object, const BobPropertyRow* rows) {
  const BobLocal keep(interp->locals, object);
  for (; rows && rows->name; ++rows)
    addRowProperty(interp, keep, rows->name, addRow(interp, kBobVPMethod, 4, {nullptr, rows}));
}

void bobBindFunctions(BobInterp* interp, const BobMethodRow* rows) {
  bobAddMethodRows(interp, interp->scope.object, rows);
}

BobValue bobObjectClass(const BobInterp* interp) { return interp->objectClass; }

BobValue bobMakeClass(BobInterp* interp, const char* name, BobValue parent, const BobMethodRow* methods) {
  const BobLocal object(interp->locals, bobMakeObject(interp, parent));
  if (name) bobSetGlobal(&interp->scope, name, object);
  bobAddMethodRows(interp, object, methods);
  return object;
}

BobValue bobMakeValueClass(BobInterp* interp, uint32_t type, const BobMethodRow* methods,
                           const BobPropertyRow* properties) {
  const BobLocal classObject(interp->locals, makeTypeInstance(interp, type));
  bobSetGlobal(&interp->scope, interp->record(type)->name, classObject);
  bobAddMethodRows(interp, classObject, methods);
  bobAddPropertyRows(interp, classObject, properties);
  return classObject;
}

uint32_t bobMakeKind(BobInterp* interp, uint32_t parentKind, const char* name, const BobMethodRow* methods,
                     const BobPropertyRow* properties, uint32_t extraSize) {
  const uint32_t type = makeKindRecord(interp, parentKind, name, (extraSize + 3) & ~3u);
  if (!type) return 0;
  const BobLocal classObject(interp->locals, makeTypeInstance(interp, type));
  bobSetGlobal(&interp->scope, name, classObject);
  interp->record(type)->classObject = classObject;
  bobAddMethodRows(interp, classObject, methods);
  bobAddPropertyRows(interp, classObject, properties);
  return type;
}

void bobSetFinalizer(BobInterp* interp, uint32_t kind, void (*finalizer)(BobInterp*, BobValue)) {
  interp->record(kind)->finalizer = finalizer;
}

bool bobIsOfKind(BobInterp* interp, BobValue value, uint32_t kind) {
  for (uint32_t type = interp->typeOf(value); type; type = interp->record(type)->parentType)
    if (interp->record(type)->base == kind) return true;
  return false;
}

BobValue bobMakeNative(BobInterp* interp, uint32_t type) {
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

uint32_t& bobHandleOf(BobInterp* interp, BobValue object) { return interp->words(object)[kNativePointer]; }

void* bobNativePointer(BobInterp* interp, BobValue object) {
  return bobHandlePointer(interp, bobHandleOf(interp, object));
}

uint8_t* bobExtraBytes(BobInterp* interp, BobValue object) { return interp->bytes(object) + kCObjectWords * 4; }

BobValue bobParentOf(BobInterp* interp, BobValue object) { return interp->words(object)[kParent]; }

void bobSetParent(BobInterp* interp, BobValue object, BobValue parent) { interp->words(object)[kParent] = parent; }

void bobMakeTypeKind(BobInterp* interp) {
  interp->typeClass = makeKindRecord(interp, 0, "Type", 4);
  BobTypeRecord* record = interp->record(interp->typeClass);
  record->New = newOfType;
  record->Print = bobPrintType;
  const BobValue classObject = makeTypeInstance(interp, interp->typeClass);
  interp->record(interp->typeClass)->classObject = classObject;
  bobSetGlobal(&interp->scope, "Type", classObject);
}

// Reached with the class (new File) and with an instance (new stdout); both make an instance of the kind.
BobValue bobNewCObject(BobInterp* interp, BobValue value) {
  const bool isClass = interp->typeOf(value) == interp->typeClass;
  return bobMakeNative(interp, isClass ? interp->words(value)[kNativePointer] : interp->typeOf(value));
}
