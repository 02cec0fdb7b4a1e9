// The bytes that the program has allocated and not freed, in ordinary builds and in those with a sanitizer, which
// brings an allocator of its own.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VISTREL_SANITIZER_ALLOCATES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VISTREL_SANITIZER_ALLOCATES
#endif
#endif

#ifdef VISTREL_SANITIZER_ALLOCATES
#include <sanitizer/allocator_interface.h>
inline size_t allocatedBytes() { return __sanitizer_get_current_allocated_bytes(); }
#else
#include <malloc.h>
inline size_t allocatedBytes() { return mallinfo2().uordblks; }
#endif
