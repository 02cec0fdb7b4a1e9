#include "t2k/tsimem.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Around each block: magic and size before it, two bytes after it.
constexpr uint32_t kBlockMagic = 0xAA53C5AA;
constexpr uint8_t kTail[2] = {0x5A, 0xF0};
constexpr uint32_t kHeadBytes = 8;
constexpr uint32_t kFrameBytes = kHeadBytes + sizeof kTail;

struct BlockHead {
  uint32_t magic;
  uint32_t size;
};
static_assert(sizeof(BlockHead) == kHeadBytes);

uint8_t* RawBlock(void* block) { return static_cast<uint8_t*>(block) - kHeadBytes; }

BlockHead ReadHead(const uint8_t* raw) {
  BlockHead head;
  std::memcpy(&head, raw, sizeof head);
  return head;
}

void MarkBlock(uint8_t* raw, uint32_t size) {
  const BlockHead head{kBlockMagic, size};
  std::memcpy(raw, &head, sizeof head);
  std::memcpy(raw + kHeadBytes + size, kTail, sizeof kTail);
}

// The size of a block whose head and tail are sound.
uint32_t CheckedSize(tsiMemObject* mem, const uint8_t* raw) {
  const BlockHead head = ReadHead(raw);
  if (head.magic != kBlockMagic) tsi_Error(mem, kT2KDamagedBlock);
  if (std::memcmp(raw + kHeadBytes + head.size, kTail, sizeof kTail) != 0) tsi_Error(mem, kT2KDamagedBlock);
  return head.size;
}

// The slot of a block, or -1. Blocks that are made last mostly go first, so it looks from the top.
int FindSlot(const tsiMemObject* mem, const void* raw) {
  for (int i = mem->slotsInUse - 1; i >= 0; --i) {
    if (mem->base[i] == raw) return i;
  }
  return -1;
}

int FindFreeSlot(tsiMemObject* mem) {
  int& slot = mem->firstFree;
  while (slot < kMaxPointers && mem->base[slot]) ++slot;
  return slot < kMaxPointers ? slot : -1;
}

void TakeSlot(tsiMemObject* mem, int slot, void* raw, uint32_t size) {
  mem->base[slot] = raw;
  mem->forget[slot] = nullptr;
  mem->firstFree = slot + 1;
  mem->slotsInUse = std::max(mem->slotsInUse, slot + 1);
  mem->numPointers++;
  mem->totalBytes += size;
}

void FreeSlot(tsiMemObject* mem, int slot) {
  mem->totalBytes -= ReadHead(static_cast<const uint8_t*>(mem->base[slot])).size;
  std::free(mem->base[slot]);
  mem->base[slot] = nullptr;
  mem->forget[slot] = nullptr;
  mem->firstFree = std::min(mem->firstFree, slot);
  while (mem->slotsInUse > 0 && !mem->base[mem->slotsInUse - 1]) mem->slotsInUse--;
  mem->numPointers--;
}

void CheckBudget(tsiMemObject* mem, uint32_t size, uint32_t released) {
  if (size > kMaxBlockBytes || size > kMaxTotalBytes - (mem->totalBytes - released)) tsi_Error(mem, kT2KOutOfMemory);
}

}  // namespace

tsiMemObject* tsi_NewMemhandler(int* errCode) {
  auto* mem = static_cast<tsiMemObject*>(std::calloc(1, sizeof(tsiMemObject)));
  if (errCode) *errCode = mem ? 0 : kT2KOutOfMemory;
  if (!mem) return nullptr;
  mem->stamp1 = kHandlerStamp1;
  mem->maxPointers = kMaxPointers;
  mem->state = kHandlerState;
  mem->stamp2 = kHandlerStamp2;
  return mem;
}

void tsi_DeleteMemhandler(tsiMemObject* mem) {
  if (!mem) return;
  for (void* raw : mem->base) std::free(raw);
  std::free(mem);
}

void* tsi_AllocMem(tsiMemObject* mem, uint32_t size) {
  if (!mem) tsi_Error(mem, kT2KNullHandlerAlloc);
  if (mem->numPointers >= mem->maxPointers) tsi_Error(mem, kT2KTooManyBlocks);
  CheckBudget(mem, size, 0);
  const int slot = FindFreeSlot(mem);
  if (slot < 0) tsi_Error(mem, kT2KNoFreeSlot);
  auto* raw = static_cast<uint8_t*>(std::malloc(size + kFrameBytes));
  if (!raw) throw std::bad_alloc();
  MarkBlock(raw, size);
  TakeSlot(mem, slot, raw, size);
  return raw + kHeadBytes;
}

void* tsi_ReAllocMem(tsiMemObject* mem, void* block, uint32_t size) {
  if (!block) return nullptr;
  if (!mem) tsi_Error(mem, kT2KNullHandlerAlloc);
  uint8_t* raw = RawBlock(block);
  const uint32_t oldSize = CheckedSize(mem, raw);
  const int slot = FindSlot(mem, raw);
  if (slot < 0) tsi_Error(mem, kT2KUnknownReAlloc);
  CheckBudget(mem, size, oldSize);
  auto* moved = static_cast<uint8_t*>(std::realloc(raw, size + kFrameBytes));
  if (!moved) throw std::bad_alloc();
  MarkBlock(moved, size);
  mem->base[slot] = moved;
  mem->totalBytes += size - oldSize;
  return moved + kHeadBytes;
}

void tsi_DeAllocMem(tsiMemObject* mem, void* block) {
  if (!block) return;
  if (!mem) tsi_Error(mem, kT2KNullHandlerAlloc);
  uint8_t* raw = RawBlock(block);
  CheckedSize(mem, raw);
  const int slot = FindSlot(mem, raw);
  if (slot < 0) tsi_Error(mem, kT2KUnknownBlock);
  if (mem->numPointers < 1) tsi_Error(mem, kT2KBadCount);
  FreeSlot(mem, slot);
}

void tsi_Error(tsiMemObject*, int code) { throw tsiError{code}; }

void tsi_FreeShell(tsiMemObject* mem, void* block) {
  const int slot = FindSlot(mem, RawBlock(block));
  if (slot >= 0) FreeSlot(mem, slot);
}

void tsi_HoldByCaller(tsiMemObject* mem, void* block, void (*forget)(void* object)) {
  const int slot = FindSlot(mem, RawBlock(block));
  if (slot < 0) tsi_Error(mem, kT2KUnknownBlock);
  mem->forget[slot] = forget;
}

void tsi_TearDown(tsiMemObject* mem, int code) {
  mem->failedCode = code;
  for (int i = mem->slotsInUse - 1; i >= 0; --i) {
    if (!mem->base[i]) continue;
    if (mem->forget[i]) {
      mem->forget[i](static_cast<uint8_t*>(mem->base[i]) + kHeadBytes);
    } else {
      FreeSlot(mem, i);
    }
  }
}
