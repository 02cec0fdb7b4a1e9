// The value word: what it means by itself, without looking into the arena (that is layout.h).
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
constexpr uint32_t kBobTypeRecordSize = 128;  // enough for one BobTypeRecord on any host
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
