// How much memory the program has allocated and not freed, in bytes.
//
// Under a sanitizer, whose allocator takes the C library's place, the figure is exact. Elsewhere the C library counts,
// with its own bookkeeping, so compare with some slack.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VISTREL_SANITIZER_ALLOCATES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VISTREL_SANITIZER_ALLOCATES
#endif
#endif

#ifdef VISTREL_SANITIZER_ALLOCATES
extern "C" size_t __sanitizer_get_current_allocated_bytes();  // in the sanitizers' runtime; GCC has no header for it

inline int64_t allocatedBytes() { return int64_t(__sanitizer_get_current_allocated_bytes()); }
#else
#include <malloc.h>

inline int64_t allocatedBytes() {
  const auto info = mallinfo2();
  return int64_t(info.uordblks + info.hblkhd);
}
#endif
