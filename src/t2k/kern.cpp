#include "t2k/kern.h"

namespace {

constexpr uint32_t kPairBytes = 6;

kernPairs* ReadPairs(InputStream& in) {
  auto* pairs = tsi_NewRecord<kernPairs>(in.mem);
  pairs->nPairs = ReadUInt16(in);
  pairs->searchRange = ReadUInt16(in);
  pairs->entrySelector = ReadUInt16(in);
  pairs->rangeShift = ReadUInt16(in);
  pairs->pairs = KeepBytes(in, pairs->nPairs * kPairBytes);
  return pairs;
}

}  // namespace

kernClass* ReadKern(InputStream& in) {
  auto* kern = tsi_NewRecord<kernClass>(in.mem);
  kern->mem = in.mem;
  kern->version = ReadUInt16(in);
  kern->nTables = ReadUInt16(in);
  const bool longLayout = kern->version == 1 && kern->nTables == 0;
  if (longLayout) kern->nTables = ReadUInt32(in);
  const uint32_t headBytes = longLayout ? 8 : 6;
  tsi_Assert(in.mem, kern->nTables <= BytesLeft(in) / headBytes);

  kern->table = tsi_NewArray<kernSubTable>(in.mem, kern->nTables);
  for (uint32_t i = 0; i < kern->nTables; ++i) {
    kernSubTable& sub = kern->table[i];
    const uint32_t begin = in.pos - in.posZero;
    if (!longLayout) SkipBytes(in, 2);  // its version
    sub.length = longLayout ? ReadUInt32(in) : ReadUInt16(in);
    sub.coverage = ReadUInt16(in);
    sub.format = uint8_t(longLayout ? sub.coverage : sub.coverage >> 8);
    if (longLayout) SkipBytes(in, 2);  // tuple index
    sub.pairs = sub.format == 0 && sub.length >= 1 ? ReadPairs(in) : nullptr;
    if (i + 1 < kern->nTables) {
      tsi_Assert(in.mem, sub.length <= in.maxPos - in.posZero - begin);
      SeekTo(in, begin + sub.length);
    }
  }
  return kern;
}

void DeleteKern(kernClass* kern) {
  if (!kern) return;
  for (uint32_t i = 0; i < kern->nTables; ++i) {
    kernPairs* const pairs = kern->table[i].pairs;
    if (pairs) tsi_DeAllocMem(kern->mem, pairs->pairs.copy);
    tsi_DeAllocMem(kern->mem, pairs);
  }
  tsi_DeAllocMem(kern->mem, kern->table);
  tsi_DeAllocMem(kern->mem, kern);
}

int16_t LookUpKern(const kernClass& kern, uint16_t left, uint16_t right) {
  if (!kern.nTables || !kern.table[0].pairs) return 0;
  const kernPairs& pairs = *kern.table[0].pairs;
  const uint32_t key = uint32_t(left) << 16 | right;
  int low = 0;
  int high = pairs.nPairs - 1;
  while (low <= high) {
    const int middle = (low + high) >> 1;
    const uint8_t* const pair = pairs.pairs.at + size_t(middle) * kPairBytes;
    const uint32_t found = hsBig32(pair);
    if (found == key) return int16_t(hsBig16(pair + 4));
    if (found < key) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return 0;
}
