#include "gfx/foundation/hschunkallocator.h"

#include <cstring>
#include <new>

#include "gfx/foundation/hsdebug.h"

void* hsChunkAllocator::Allocate(int32_t size, const void* data) {
  hsThrowIfFalse(size >= 0);
  if (!fChunks || fChunks->fAvailable < size) {
    if (size > fChunkSize) fChunkSize = size;
    Chunk* chunk = static_cast<Chunk*>(::operator new(sizeof(Chunk) + size_t(fChunkSize)));
    *chunk = {fChunks, reinterpret_cast<char*>(chunk + 1), fChunkSize, fChunkSize, 0};
    fChunks = chunk;
    ++fChunkCount;
  }
  char* piece = fChunks->fPtr;
  fChunks->fPtr += size;
  fChunks->fAvailable -= size;
  ++fChunks->fAllocCount;
  if (data) std::memcpy(piece, data, size_t(size));
  return piece;
}

void* hsChunkAllocator::SoftAllocate(int32_t size, const void* data) {
  try {
    return Allocate(size, data);
  } catch (...) {
    return nullptr;
  }
}

void hsChunkAllocator::Reset() {
  while (Chunk* chunk = fChunks) {
    fChunks = chunk->fNext;
    ::operator delete(chunk);
  }
  fChunkCount = 0;
}
