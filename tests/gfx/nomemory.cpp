#include "gfx/nomemory.h"

#include <cstdlib>
#include <new>

size_t NoMemory::failsFrom = SIZE_MAX;

// In a file of its own, so that no caller is compiled into it. All forms go together: a sanitizer has its own of each.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return size >= NoMemory::failsFrom ? nullptr : std::malloc(size ? size : 1);
}
void* operator new(size_t size) {
  void* block = operator new(size, std::nothrow);
  if (!block) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
