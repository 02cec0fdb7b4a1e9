// Blocks of raw memory, with their arguments checked.
//
// BlockCopy refuses ranges that overlap; BlockMove is for those.
#pragma once

#include <cstdint>

class hsMemory {
 public:
  // size bytes, rounded up to whole words. Throws std::bad_alloc when there is no memory; null for a negative size.
  static void* New(int32_t size);
  // null when there is no memory. A negative size throws.
  static void* SoftNew(int32_t size);
  static void Delete(void* block);
  // A new block with a copy of size bytes of source.
  static void* Dup(int32_t size, const void* source);

  static void BlockCopy(void* dest, const void* source, int32_t size);
  static void BlockMove(void* dest, const void* source, int32_t size);
  static void Clear(void* dest, int32_t size);
  static bool EqualBlocks(const void* a, const void* b, int32_t size);
};
