#include "bob/model/types.h"

#include <new>

#include "bob/heap/interp.h"
#include "bob/heap/quickcode.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"
#include "bob/model/members.h"
#include "bob/model/objects.h"
#include "bob/model/print.h"
#include "bob/model/strings.h"
#include "bob/model/symbols.h"
#include "bob/model/vectors.h"

using namespace BobLayout;

namespace {

// -- sizes in the heap, in bytes
template <int kWords>
uint32_t fixedSize(BobInterp*, BobValue) {
  return kWords * 4;
}
template <int kExtraWords>  // a count of words in word 1, and the words around it
uint32_t countedSize(BobInterp* interp, BobValue object) {
  return (interp->words(object)[1] + kExtraWords) * 4;
}
uint32_t codeSize(BobInterp* interp, BobValue object) {
  return (bobCodeCount(interp->words(object)[kCodeCount]) + 2) * 4;
}
uint32_t stringSize(BobInterp* interp, BobValue object) { return bobStringSize(interp->words(object)[kStringLength]); }
uint32_t symbolSize(BobInterp* interp, BobValue object) { return bobSymbolSize(interp->words(object)[kSymbolLength]); }
uint32_t cObjectSize(BobInterp* interp, BobValue object) {
  return kCObjectWords * 4 + interp->recordOf(object)->extraSize;
}

// -- copies
BobValue copyNothing(BobInterp*, BobValue value) { return value; }

BobValue copyBrokenHeart(BobInterp* interp, BobValue value) { return interp->words(value)[1]; }

void forward(BobInterp* interp, BobValue object, BobValue to) {
  uint32_t* w = interp->words(object);
  w[0] = kBobBrokenHeart;
  w[1] = to;
}

BobValue copyBySize(BobInterp* interp, BobValue value) {
  const uint32_t size = interp->recordOf(value)->Size(interp, value);
  const BobValue to = interp->newSpace.free;
  interp->newSpace.free += size;
  std::memcpy(interp->bytes(to), interp->bytes(value), size);
  forward(interp, value, to);
  return to;
}

BobValue copyCode(BobInterp* interp, BobValue value) {
  bobMarkQuickCode(interp, bobCodeQuickNumber(interp->words(value)[kCodeCount]));
  return copyBySize(interp, value);
}

BobValue copyMovedVector(BobInterp* interp, BobValue value) {
  const BobValue to = interp->moved(interp->words(value)[kMovedTo]);
  forward(interp, value, to);
  return to;
}

BobValue copyMovedEnvironment(BobInterp* interp, BobValue value) {
  return interp->moved(interp->words(value)[kEnvNext]);
}

// -- scans
void scanNothing(BobInterp*, BobValue) {}

void scanWords(BobInterp* interp, BobValue object, uint32_t first, uint32_t end) {
  uint32_t* w = interp->words(object);
  for (uint32_t i = first; i < end; ++i)  // most are small integers or symbols, nil among them, which don't move
    if (!bobIsSmall(w[i]) && *interp->words(w[i]) != kBobSymbol) w[i] = interp->moved(w[i]);
}
template <int kFirst, int kEnd>
void scanFields(BobInterp* interp, BobValue object) {
  scanWords(interp, object, kFirst, kEnd);
}
void scanCounted(BobInterp* interp, BobValue object) { scanWords(interp, object, 2, 2 + interp->words(object)[1]); }
void scanCode(BobInterp* interp, BobValue object) {
  scanWords(interp, object, kCodeElements, kCodeElements + bobCodeCount(interp->words(object)[kCodeCount]));
}
void scanVector(BobInterp* interp, BobValue object) {
  scanWords(interp, object, kElements, kElements + interp->words(object)[kSize]);
}
void scanCObject(BobInterp* interp, BobValue object) {
  interp->words(object)[kFinalizeLink] = interp->newSpace.finalizeList;
  interp->newSpace.finalizeList = object;
  scanWords(interp, object, kParent, kProperties + 1);
}

// -- hashes
uint32_t hashNothing(BobInterp*, BobValue) { return 0; }
uint32_t hashString(BobInterp* interp, BobValue value) { return bobHashBytes(interp->stringOf(value)); }
uint32_t hashInteger(BobInterp* interp, BobValue value) { return uint32_t(interp->integerOf(value)); }
uint32_t hashSymbol(BobInterp* interp, BobValue value) { return interp->words(value)[kSymbolHash]; }

bool getNothing(BobInterp*, BobValue, BobValue, BobValue*) { return false; }
bool setNothing(BobInterp*, BobValue, BobValue, BobValue) { return false; }
BobValue newNothing(BobInterp* interp, BobValue value) { bobRaise(interp, kBobNoInstances, value); }

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
    {kBobBrokenHeart, "BrokenHeart", kBobBrokenHeart, getNothing, setNothing, newNothing, bobPrintIdentity,
     fixedSize<2>, copyBrokenHeart, scanNothing, hashNothing},
    {kBobObject, "Object", kBobObject, bobGetObjectProperty, bobSetObjectProperty, bobNewObject, bobPrintIdentity,
     fixedSize<4>, copyBySize, scanFields<kParent, kProperties + 1>, hashNothing},
    {kBobProperty, "Property", kBobProperty, getNothing, setNothing, newNothing, bobPrintIdentity,
     fixedSize<4>, copyBySize, scanFields<kKey, kNext + 1>, hashNothing},
    {kBobMethod, "Method", kBobMethod, bobGetValueProperty, bobSetValueProperty, newNothing, bobPrintMethod,
     fixedSize<4>, copyBySize, scanFields<kMethodCode, kMethodScope + 1>, hashNothing},
    {kBobCMethod, "CMethod", kBobMethod, bobGetValueProperty, bobSetValueProperty, newNothing, bobPrintRow,
     fixedSize<3>, copyNothing, scanNothing, hashNothing},
    {kBobCompiledCode, "CompiledCode", kBobCompiledCode, getNothing, setNothing, newNothing, bobPrintCode,
     codeSize, copyCode, scanCode, hashNothing},
    {kBobString, "String", kBobString, bobGetStringProperty, bobSetStringProperty, bobNewString, bobPrintString,
     stringSize, copyBySize, scanNothing, hashString},
    {kBobCObject, "CObject", kBobObject, bobGetCObjectProperty, bobSetCObjectProperty, bobNewCObject, bobPrintIdentity,
     cObjectSize, copyBySize, scanCObject, hashNothing},
    {kBobVPMethod, "VPMethod", kBobVPMethod, getNothing, setNothing, newNothing, bobPrintRow,
     fixedSize<4>, copyNothing, scanNothing, hashNothing},
    {kBobInteger, "Integer", kBobInteger, bobGetValueProperty, bobSetValueProperty, newNothing, bobPrintInteger,
     fixedSize<2>, copyBySize, scanNothing, hashInteger},
    {kBobSymbol, "Symbol", kBobSymbol, bobGetValueProperty, bobSetValueProperty, newNothing, bobPrintSymbol,
     symbolSize, copyNothing, scanNothing, hashSymbol},
    {kBobVector, "Vector", kBobVector, bobGetVectorProperty, bobSetVectorProperty, bobNewVector, bobPrintVector,
     countedSize<3>, copyBySize, scanVector, hashNothing},
    {kBobMovedVector, "Vector", kBobVector, bobGetVectorProperty, bobSetVectorProperty, newNothing, bobPrintVector,
     countedSize<3>, copyMovedVector, scanNothing, hashNothing},
    {kBobFloat, "Float", kBobFloat, bobGetValueProperty, bobSetValueProperty, newNothing, bobPrintFloat,
     fixedSize<4>, copyBySize, scanNothing, hashNothing},
    {kBobEnvironment, "Environment", kBobEnvironment, getNothing, setNothing, newNothing, bobPrintIdentity,
     countedSize<2>, copyBySize, scanCounted, hashNothing},
    {kBobStackEnvironment, "StackEnvironment", kBobEnvironment, getNothing, setNothing, newNothing, bobPrintIdentity,
     countedSize<2>, copyNothing, scanCounted, hashNothing},
    {kBobMovedEnvironment, "MovedEnvironment", kBobEnvironment, getNothing, setNothing, newNothing, bobPrintIdentity,
     countedSize<2>, copyMovedEnvironment, scanCounted, hashNothing},
    {kBobHashTable, "HashTable", kBobHashTable, getNothing, setNothing, newNothing, bobPrintIdentity,
     countedSize<2>, copyBySize, scanCounted, hashNothing},
};
// clang-format on

}  // namespace

void bobMakeTypeRecords(BobInterp* interp) {
  for (const BuiltIn& t : kBuiltIns) {
    new (interp->bytes(t.type)) BobTypeRecord{t.name, t.base, t.get, t.set, t.make,  t.print, t.size, t.copy,
                                              t.scan, t.hash, 0,     0,     nullptr, 0,       0};
  }
}
