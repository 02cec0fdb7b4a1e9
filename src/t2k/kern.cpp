#include "t2k/kern.h"

namespace {

kernPairs* ReadPairs(InputStream& in) {
  const uint16_t nPairs = ReadUInt16(in);
  const uint16_t searchRange = ReadUInt16(in);
  const uint16_t entrySelector = ReadUInt16(in);
  const uint16_t rangeShift = ReadUInt16(in);
  tsi_Assert(in.mem, nPairs * 6u <= BytesLeft(in));
  void* block = tsi_AllocMem(in.mem, uint32_t(sizeof(kernPairs) + nPairs * sizeof(kernPair)));
  auto* pairs = new (block) kernPairs{nPairs, searchRange, entrySelector, rangeShift, nullptr};
  pairs->pairs = reinterpret_cast<kernPair*>(pairs + 1);
  for (int i = 0; i < nPairs; ++i) {
    const uint32_t key = ReadUInt32(in);
    pairs->pairs[i] = {key, ReadInt16(in)};
  }
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
  for (uint32_t i = 0; i < kern->nTables; ++i) tsi_DeAllocMem(kern->mem, kern->table[i].pairs);
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
    const kernPair& pair = pairs.pairs[middle];
    if (pair.key == key) return pair.value;
    if (pair.key < key) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
  return 0;
}
