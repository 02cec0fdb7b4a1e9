// How every object lies in the arena, word by word. Word 0 of everything is the type word.
#pragma once

#include "bob/base/value.h"

// Word indices of the fields, unless said to be byte offsets.
namespace BobLayout {
constexpr int kIntegerValue = 1;
constexpr int kFloatWords = 2;    // the double fills words 2 and 3; word 1 is left unset
constexpr int kStringLength = 1;  // bytes; the text follows, with at least one zero byte after it
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

// The bytes of a String of `length` bytes of text.
constexpr uint32_t bobStringSize(uint32_t length) { return ((length + 4) & ~3u) + 8; }

// Bit 31 of an Object's count: cached lookups have passed over the object, so a property added to it may hide one
// that they found further up.
constexpr uint32_t kBobWatched = 0x80000000;

// The count word of a CompiledCode carries the number of its quick code in the upper half (0: none yet).
constexpr uint32_t bobCodeCount(uint32_t countWord) { return countWord & 0xFFFF; }
constexpr uint32_t bobCodeQuickNumber(uint32_t countWord) { return countWord >> 16; }
