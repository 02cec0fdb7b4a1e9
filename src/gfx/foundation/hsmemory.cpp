#include "gfx/foundation/hsmemory.h"

#include <cstring>
#include <new>

#include "gfx/foundation/hsdebug.h"

namespace {

void CheckBlocks(const void* a, const void* b, int32_t size) {
  hsThrowIfNilParam(a);
  hsThrowIfNilParam(b);
  hsThrowIfFalse(size >= 0);
}

}  // namespace

void* hsMemory::New(int32_t size) {
  if (!hsAssert(size >= 0, "bad size")) return nullptr;
  return ::operator new ((size_t(size) + 3) & ~size_t{3});
}

void* hsMemory::SoftNew(int32_t size) {
  hsThrowIfFalse(size >= 0);
  try {
    return New(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void hsMemory::Delete(void* block) { ::operator delete(block); }

void* hsMemory::Dup(int32_t size, const void* source) {
  hsThrowIfNilParam(source);
  hsThrowIfFalse(size >= 0);
  void* copy = New(size);
  BlockCopy(copy, source, size);
  return copy;
}

void hsMemory::BlockCopy(void* dest, const void* source, int32_t size) {
  CheckBlocks(dest, source, size);
  const uintptr_t to = uintptr_t(dest), from = uintptr_t(source);
  hsThrowIfFalse(to + size_t(size) <= from || from + size_t(size) <= to);
  std::memcpy(dest, source, size_t(size));
}

void hsMemory::BlockMove(void* dest, const void* source, int32_t size) {
  CheckBlocks(dest, source, size);
  std::memmove(dest, source, size_t(size));
}

void hsMemory::Clear(void* dest, int32_t size) {
  CheckBlocks(dest, dest, size);
  std::memset(dest, 0, size_t(size));
}

bool hsMemory::EqualBlocks(const void* a, const void* b, int32_t size) {
  CheckBlocks(a, b, size);
  return std::memcmp(a, b, size_t(size)) == 0;
}
