// Small pieces out of large chunks, freed only all together.
//
// A chunk that can't hold the next piece is abandoned with what it had left. Pieces follow each other without padding,
// so they are aligned only if all sizes asked for are.
#pragma once

#include <cstdint>

class hsChunkAllocator {
 public:
  explicit hsChunkAllocator(int32_t chunkSize = 4096) : fChunkSize(chunkSize) {}
  ~hsChunkAllocator() { Reset(); }
  hsChunkAllocator(const hsChunkAllocator&) = delete;
  hsChunkAllocator& operator=(const hsChunkAllocator&) = delete;

  // A piece of size bytes, with a copy of data in it unless that is null. A size above the chunk size raises the chunk
  // size for good. Throws std::bad_alloc when there is no memory.
  void* Allocate(int32_t size, const void* data = nullptr);
  // null when there is no memory.
  void* SoftAllocate(int32_t size, const void* data = nullptr);
  void Reset();

 private:
  struct Chunk {
    Chunk* fNext;
    char* fPtr;           // next free byte
    int32_t fAvailable;   // bytes
    int32_t fSize;        // bytes of storage, which follows the chunk
    int32_t fAllocCount;  // pieces handed out
  };

  int32_t fChunkSize;  // bytes
  Chunk* fChunks = nullptr;
  int32_t fChunkCount = 0;
};
