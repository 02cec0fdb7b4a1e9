// The built-in type records: for each, how the collector measures, copies and scans its objects, and their hash.
#include <new>

#include "bob/heap.h"
#include "bob/objects.h"
#include "bob/print.h"
#include "bob/thread.h"

using namespace BobLayout;

namespace {

// -- sizes in the heap, in bytes
template <int kWords>
uint32_t FixedSize(BobInterp*, BobValue) {
  return kWords * 4;
}
template <int kExtraWords>  // a count of words in word 1, and the words around it
uint32_t CountedSize(BobInterp* interp, BobValue object) {
  return (interp->words(object)[1] + kExtraWords) * 4;
}
uint32_t CodeSize(BobInterp* interp, BobValue object) {
  return (bobCodeCount(interp->words(object)[kCodeCount]) + 2) * 4;
}
uint32_t StringSize(BobInterp* interp, BobValue object) { return bobStringSize(interp->words(object)[kStringLength]); }
uint32_t SymbolSize(BobInterp* interp, BobValue object) { return bobSymbolSize(interp->words(object)[kSymbolLength]); }
uint32_t CObjectSize(BobInterp* interp, BobValue object) {
  return kCObjectWords * 4 + interp->recordOf(object)->extraSize;
}

// -- copies
BobValue CopyNothing(BobInterp*, BobValue value) { return value; }

BobValue CopyBrokenHeart(BobInterp* interp, BobValue value) { return interp->words(value)[1]; }

void Forward(BobInterp* interp, BobValue object, BobValue to) {
  uint32_t* w = interp->words(object);
  w[0] = kBobBrokenHeart;
  w[1] = to;
}

BobValue CopyBySize(BobInterp* interp, BobValue value) {
  const uint32_t size = interp->recordOf(value)->Size(interp, value);
  const BobValue to = interp->newSpace.free;
  interp->newSpace.free += size;
  std::memcpy(interp->bytes(to), interp->bytes(value), size);
  Forward(interp, value, to);
  return to;
}

BobValue CopyCode(BobInterp* interp, BobValue value) {
  bobMarkThread(interp, bobCodeThread(interp->words(value)[kCodeCount]));
  return CopyBySize(interp, value);
}

BobValue CopyMovedVector(BobInterp* interp, BobValue value) {
  const BobValue to = bobCopyValue(interp, interp->words(value)[kMovedTo]);
  Forward(interp, value, to);
  return to;
}

BobValue CopyMovedEnvironment(BobInterp* interp, BobValue value) {
  return bobCopyValue(interp, interp->words(value)[kEnvNext]);
}

// -- scans
void ScanNothing(BobInterp*, BobValue) {}

void ScanWords(BobInterp* interp, BobValue object, uint32_t first, uint32_t end) {
  uint32_t* w = interp->words(object);
  for (uint32_t i = first; i < end; ++i) w[i] = bobCopyValue(interp, w[i]);
}
template <int kFirst, int kEnd>
void ScanFields(BobInterp* interp, BobValue object) {
  ScanWords(interp, object, kFirst, kEnd);
}
void ScanCounted(BobInterp* interp, BobValue object) { ScanWords(interp, object, 2, 2 + interp->words(object)[1]); }
void ScanCode(BobInterp* interp, BobValue object) {
  ScanWords(interp, object, kCodeElements, kCodeElements + bobCodeCount(interp->words(object)[kCodeCount]));
}
void ScanVector(BobInterp* interp, BobValue object) {
  ScanWords(interp, object, kElements, kElements + interp->words(object)[kSize]);
}
void ScanCObject(BobInterp* interp, BobValue object) {
  interp->words(object)[kFinalizeLink] = interp->newSpace.finalizeList;
  interp->newSpace.finalizeList = object;
  ScanWords(interp, object, kParent, kProperties + 1);
}

// -- hashes
uint32_t HashNothing(BobInterp*, BobValue) { return 0; }
uint32_t HashString(BobInterp* interp, BobValue value) { return bobHashBytes(bobStringText(interp, value)); }
uint32_t HashInteger(BobInterp* interp, BobValue value) { return uint32_t(bobIntegerValue(interp, value)); }
uint32_t HashSymbol(BobInterp* interp, BobValue value) { return interp->words(value)[kSymbolHash]; }

bool GetNothing(BobInterp*, BobValue, BobValue, BobValue*) { return false; }
bool SetNothing(BobInterp*, BobValue, BobValue, BobValue) { return false; }
BobValue NewNothing(BobInterp* interp, BobValue value) { bobRaise(interp, kBobNoInstances, value); }

struct BuiltIn {
  BobType type;
  const char* name;
  BobType base;
  decltype(BobTypeRecord::GetProperty) get;
  decltype(BobTypeRecord::SetProperty) set;
  decltype(BobTypeRecord::New) make;
  decltype(BobTypeRecord::Print) print;
  decltype(BobTypeRecord::Size) size;
  decltype(BobTypeRecord::Copy) copy;
  decltype(BobTypeRecord::Scan) scan;
  decltype(BobTypeRecord::Hash) hash;
};

// clang-format off
const BuiltIn kBuiltIns[] = {
    {kBobBrokenHeart, "BrokenHeart", kBobBrokenHeart, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     FixedSize<2>, CopyBrokenHeart, ScanNothing, HashNothing},
    {kBobObject, "Object", kBobObject, bobGetObjectProperty, bobSetObjectProperty, bobNewObject, bobPrintIdentity,
     FixedSize<4>, CopyBySize, ScanFields<kParent, kProperties + 1>, HashNothing},
    {kBobProperty, "Property", kBobProperty, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     FixedSize<4>, CopyBySize, ScanFields<kKey, kNext + 1>, HashNothing},
    {kBobMethod, "Method", kBobMethod, bobGetValueProperty, bobSetValueProperty, NewNothing, bobPrintMethod,
     FixedSize<4>, CopyBySize, ScanFields<kMethodCode, kMethodScope + 1>, HashNothing},
    {kBobCMethod, "CMethod", kBobMethod, bobGetValueProperty, bobSetValueProperty, NewNothing, bobPrintRow,
     FixedSize<3>, CopyNothing, ScanNothing, HashNothing},
    {kBobCompiledCode, "CompiledCode", kBobCompiledCode, GetNothing, SetNothing, NewNothing, bobPrintCode,
     CodeSize, CopyCode, ScanCode, HashNothing},
    {kBobString, "String", kBobString, bobGetStringProperty, bobSetStringProperty, bobNewString, bobPrintString,
     StringSize, CopyBySize, ScanNothing, HashString},
    {kBobCObject, "CObject", kBobObject, bobGetCObjectProperty, bobSetCObjectProperty, bobNewCObject, bobPrintIdentity,
     CObjectSize, CopyBySize, ScanCObject, HashNothing},
    {kBobVPMethod, "VPMethod", kBobVPMethod, GetNothing, SetNothing, NewNothing, bobPrintRow,
     FixedSize<4>, CopyNothing, ScanNothing, HashNothing},
    {kBobInteger, "Integer", kBobInteger, bobGetValueProperty, bobSetValueProperty, NewNothing, bobPrintInteger,
     FixedSize<2>, CopyBySize, ScanNothing, HashInteger},
    {kBobSymbol, "Symbol", kBobSymbol, bobGetValueProperty, bobSetValueProperty, NewNothing, bobPrintSymbol,
     SymbolSize, CopyNothing, ScanNothing, HashSymbol},
    {kBobVector, "Vector", kBobVector, bobGetVectorProperty, bobSetVectorProperty, bobNewVector, bobPrintVector,
     CountedSize<3>, CopyBySize, ScanVector, HashNothing},
    {kBobMovedVector, "Vector", kBobVector, bobGetVectorProperty, bobSetVectorProperty, NewNothing, bobPrintVector,
     CountedSize<3>, CopyMovedVector, ScanNothing, HashNothing},
    {kBobFloat, "Float", kBobFloat, bobGetValueProperty, bobSetValueProperty, NewNothing, bobPrintFloat,
     FixedSize<4>, CopyBySize, ScanNothing, HashNothing},
    {kBobEnvironment, "Environment", kBobEnvironment, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     CountedSize<2>, CopyBySize, ScanCounted, HashNothing},
    {kBobStackEnvironment, "StackEnvironment", kBobEnvironment, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     CountedSize<2>, CopyNothing, ScanCounted, HashNothing},
    {kBobMovedEnvironment, "MovedEnvironment", kBobEnvironment, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     CountedSize<2>, CopyMovedEnvironment, ScanCounted, HashNothing},
    {kBobHashTable, "HashTable", kBobHashTable, GetNothing, SetNothing, NewNothing, bobPrintIdentity,
     CountedSize<2>, CopyBySize, ScanCounted, HashNothing},
};
// clang-format on

}  // namespace

void bobMakeTypeRecords(BobInterp* interp) {
  for (const BuiltIn& t : kBuiltIns) {
    new (interp->bytes(t.type)) BobTypeRecord{t.name, t.base, t.get, t.set, t.make,  t.print, t.size, t.copy,
                                              t.scan, t.hash, 0,     0,     nullptr, 0,       0};
  }
}
