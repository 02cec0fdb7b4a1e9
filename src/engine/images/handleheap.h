// A heap of movable blocks in one fixed piece of memory, reached through handles.
//
// The handle table grows from the start of the memory and blocks grow down from its end; when they would meet, live
// blocks are moved together. A payload's address is good until the next allocation. All words in the memory are offsets
// from its start, so the limits are the player's, to the byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

using HeapHandle = uint32_t;  // offset of its slot; 0 for none

// Repairs a payload that has moved by `distance` bytes: the offsets it holds into itself.
using HeapRelocator = void (*)(uint8_t* payload, int32_t distance);

class HandleHeap {
 public:
  // Takes the memory over, with 32 handles. False when it is too small.
  bool init(void* memory, size_t size);

  // What a payload of that size takes, and what memory of that size has for blocks while the table is as small as it
  // starts.
  static uint64_t blockSize(uint64_t size);
  static size_t space(size_t memorySize);

  // 0 when there is no space, even after moving.
  HeapHandle heapAlloc(HeapRelocator relocator, uint64_t size);
  void heapFree(HeapHandle handle);  // its space comes back with the next compaction

  // What the memory is used for, in bytes: the table grows up from its start, blocks grow down from its end.
  struct Extent {
    uint32_t size = 0, table = 0, blocks = 0;
  };
  Extent extent() const;  // freed blocks count until they are moved over

  uint8_t* payload(HeapHandle handle) const { return base + word(handle); }
  uint8_t* at(uint32_t offset) const { return base + offset; }
  uint32_t offsetOf(const uint8_t* address) const { return uint32_t(address - base); }

 private:
  uint32_t& word(uint32_t offset) const { return *reinterpret_cast<uint32_t*>(base + offset); }
  HeapHandle findFreeHandle() const;
  bool growTable();
  void compact();
  void moveBlock(uint32_t from, uint32_t to, uint32_t size);

  uint32_t relocatorNumber(HeapRelocator relocator);

  uint8_t* base = nullptr;
  std::vector<HeapRelocator> relocators;  // blocks name theirs by its place here, since an address doesn't fit a word
};
