// The value word, and how every object lies in the arena.
//
// A BobValue is one 32-bit word. Low bit 1: a small integer. Low bit 0: the byte offset of an object from the base
// of the interpreter's arena. The first word of an object is the arena offset of its BobTypeRecord. Sizes are those
// of 32-bit words on every host, since the 102,400 bytes of a space are a limit that programs meet.
//
// nil and true are the first two symbols made, and symbols don't move, so both are constants. There is no third truth
// value: false is the same word as nil, and everything else counts as true, 0 included.
#pragma once

#include <cstddef>
#include <cstdint>

struct BobInterp;

using BobValue = uint32_t;

// What an arena is made of, from its base up: the built-in type records, the first symbol chunk, the two spaces, the
// stack, and then what is added over time (more chunks, static rows, records of native kinds). Offset 0 is no object.
constexpr uint32_t kBobTypeRecordSize = 128;  // room for one BobTypeRecord on any host
constexpr uint32_t kBobFirstType = 128;

// The built-in types, in arena order: the type word of an object of a built-in type is one of these.
enum BobType : uint32_t {
  kBobBrokenHeart = kBobFirstType,
  kBobObject = kBobBrokenHeart + kBobTypeRecordSize,
  kBobProperty = kBobObject + kBobTypeRecordSize,
  kBobMethod = kBobProperty + kBobTypeRecordSize,
  kBobCMethod = kBobMethod + kBobTypeRecordSize,
  kBobCompiledCode = kBobCMethod + kBobTypeRecordSize,
  kBobString = kBobCompiledCode + kBobTypeRecordSize,
  kBobCObject = kBobString + kBobTypeRecordSize,
  kBobVPMethod = kBobCObject + kBobTypeRecordSize,
  kBobInteger = kBobVPMethod + kBobTypeRecordSize,
  kBobSymbol = kBobInteger + kBobTypeRecordSize,
  kBobVector = kBobSymbol + kBobTypeRecordSize,
  kBobMovedVector = kBobVector + kBobTypeRecordSize,
  kBobFloat = kBobMovedVector + kBobTypeRecordSize,
  kBobEnvironment = kBobFloat + kBobTypeRecordSize,
  kBobStackEnvironment = kBobEnvironment + kBobTypeRecordSize,
  kBobMovedEnvironment = kBobStackEnvironment + kBobTypeRecordSize,
  kBobHashTable = kBobMovedEnvironment + kBobTypeRecordSize,
  kBobTypesEnd = kBobHashTable + kBobTypeRecordSize,
};

// A symbol chunk begins with two words, its link and the bytes left, then its payload.
constexpr uint32_t kBobFirstChunk = kBobTypesEnd;
constexpr uint32_t kBobChunkHeader = 8;
constexpr uint32_t kBobChunkPayload = 8192;

// Bytes that a symbol of `length` bytes of text takes in its chunk.
constexpr uint32_t bobSymbolSize(uint32_t length) { return ((length + 2) & ~3u) + 16; }

constexpr BobValue kBobNil = kBobFirstChunk + kBobChunkHeader;
constexpr BobValue kBobTrue = kBobNil + bobSymbolSize(3);
constexpr BobValue kBobFalse = kBobNil;

constexpr BobValue bobBoolean(bool truth) { return truth ? kBobTrue : kBobFalse; }

// Small integers: 31 bits.
constexpr int32_t kBobSmallMin = -0x40000000;
constexpr int32_t kBobSmallMax = 0x3FFFFFFF;
constexpr bool bobIsSmall(BobValue value) { return value & 1; }
constexpr bool bobFitsSmall(int32_t n) { return n >= kBobSmallMin && n <= kBobSmallMax; }
constexpr BobValue bobSmall(int32_t n) { return uint32_t(n) << 1 | 1; }  // n must fit
constexpr int32_t bobSmallValue(BobValue value) { return int32_t(value) >> 1; }

// Word indices of the fields. Word 0 of everything is the type word.
namespace BobLayout {
constexpr int kIntegerValue = 1;
constexpr int kFloatWords = 2;    // the double fills words 2 and 3; word 1 is left unset
constexpr int kStringLength = 1;  // bytes; the text follows, with at least one zero byte behind it
constexpr int kStringBytes = 8;   // byte offset of the text
constexpr int kSymbolHash = 1, kSymbolLength = 2;
constexpr int kSymbolBytes = 12;                         // byte offset of the text
constexpr int kParent = 1, kProperties = 2, kCount = 3;  // Object and CObject
constexpr int kFinalizeLink = 4, kNativePointer = 5;     // CObject
constexpr int kCObjectWords = 5;                         // without the extra bytes
constexpr int kKey = 1, kValue = 2, kNext = 3;           // Property
constexpr int kCapacity = 1, kSize = 2, kElements = 3;   // Vector
constexpr int kMovedTo = 2;                              // MovedVector, where the size was
constexpr int kCodeCount = 1, kCodeElements = 2;         // CompiledCode; see bobCodeCount
constexpr int kMethodCode = 1, kMethodEnv = 2, kMethodScope = 3;
constexpr int kRowIndex = 1;                   // CMethod and VPMethod
constexpr int kEnvCount = 1, kEnvNext = 2;     // environments: slot 0 is word 2, slot 1 is nil
constexpr int kBucketCount = 1, kBuckets = 2;  // HashTable
}  // namespace BobLayout

// Bit 31 of an Object's count: cached lookups have passed over the object, so a property added to it may hide one
// that they found further up.
constexpr uint32_t kBobWatched = 0x80000000;

// The count word of a CompiledCode carries the number of its threaded form in the upper half (0: none yet).
constexpr uint32_t bobCodeCount(uint32_t countWord) { return countWord & 0xFFFF; }
constexpr uint32_t bobCodeThread(uint32_t countWord) { return countWord >> 16; }
