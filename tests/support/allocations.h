// How much memory the program has allocated and not freed, in bytes.
//
// Under a sanitizer, whose allocator takes the C library's place, the figure is its own and exact; elsewhere it holds
// what the C library keeps ready for reuse as well, so compare it with some slack.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
extern "C" size_t __sanitizer_get_current_allocated_bytes();  // the sanitizers' runtime has it, without a header in GCC

inline int64_t allocatedBytes() { return int64_t(__sanitizer_get_current_allocated_bytes()); }
#else
#include <malloc.h>

inline int64_t allocatedBytes() {
  const auto info = mallinfo2();
  return int64_t(info.uordblks + info.hblkhd);
}
#endif
