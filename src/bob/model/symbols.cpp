#include "bob/model/symbols.h"

#include <array>

#include "bob/heap/heap.h"
#include "bob/heap/raise.h"
#include "bob/model/properties.h"

using namespace BobLayout;

namespace {

// The table is CRC-16's most-significant-bit-first one (0x1021); the update below belongs to the other form. Property
// tables list in the order of this hash, so it stays as it is.
constexpr std::array<uint16_t, 256> makeHashTable() {
  std::array<uint16_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t crc = i << 8;
    for (int bit = 0; bit < 8; ++bit) crc = crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1;
    table[i] = uint16_t(crc);
  }
  return table;
}
constexpr std::array<uint16_t, 256> kHashTable = makeHashTable();

enum ChunkWord { kChunkNext, kChunkLeft };

// A chunk's payload is handed out from its start; `left` counts the bytes that are not.
uint32_t takeFromChunk(BobInterp* interp, uint32_t size) {
  if (size > kBobChunkPayload) bobRaise(interp, kBobInsufficientMemory);
  if (!interp->symbolChunks || interp->words(interp->symbolChunks)[kChunkLeft] < size) {
    const uint32_t chunk =
        interp->symbolChunks ? bobAllocateStatic(interp, kBobChunkHeader + kBobChunkPayload) : kBobFirstChunk;
    if (!chunk) bobRaise(interp, kBobInsufficientMemory);
    interp->countNative(kBobChunkHeader + kBobChunkPayload);
    interp->words(chunk)[kChunkNext] = interp->symbolChunks;
    interp->words(chunk)[kChunkLeft] = kBobChunkPayload;
    interp->symbolChunks = chunk;
  }
  uint32_t* chunk = interp->words(interp->symbolChunks);
  const uint32_t at = interp->symbolChunks + kBobChunkHeader + kBobChunkPayload - chunk[kChunkLeft];
  chunk[kChunkLeft] -= size;
  return at;
}

BobValue findSymbol(BobInterp* interp, std::string_view text, uint32_t hash) {
  const BobValue store = interp->words(interp->symbolTable)[kProperties];
  BobValue property = store;
  if (interp->isA(store, kBobHashTable)) {
    const uint32_t* table = interp->words(store);
    property = table[kBuckets + (hash & (table[kBucketCount] - 1))];
  }
  for (; property != kBobNil; property = interp->words(property)[kNext]) {
    const BobValue symbol = interp->words(property)[kKey];
    if (interp->symbolOf(symbol) == text) return symbol;
  }
  return 0;
}

}  // namespace

uint32_t bobHashBytes(std::string_view bytes) {
  uint32_t hash = 0xFFFF;
  for (unsigned char c : bytes) hash = kHashTable[(hash ^ c) & 0xFF] ^ hash >> 8;
  return hash;
}

BobValue bobMakeSymbol(BobInterp* interp, std::string_view text, uint32_t hash) {
  const BobValue symbol = takeFromChunk(interp, bobSymbolSize(uint32_t(text.size())));
  uint32_t* w = interp->words(symbol);
  w[0] = kBobSymbol;
  w[kSymbolHash] = hash;
  w[kSymbolLength] = uint32_t(text.size());
  std::memcpy(interp->bytes(symbol) + kSymbolBytes, text.data(), text.size());
  return symbol;
}

BobValue bobIntern(BobInterp* interp, std::string_view text) {
  const uint32_t hash = bobHashBytes(text);
  if (const BobValue found = findSymbol(interp, text, hash)) return found;
  // Making the property can fail for lack of memory; the symbol then stays in its chunk, unreachable.
  const BobValue symbol = bobMakeSymbol(interp, text, hash);
  bobAddProperty(interp, interp->symbolTable, symbol, kBobNil);
  return symbol;
}
