// How much of the machine's memory this process has.
#pragma once

#include <cstddef>

#if defined(__linux__)
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#endif

// In bytes, as of about the last page faults of this thread; 0 where nobody knows, and under a sanitizer, which takes
// more for itself than the program does. What it reads is opened by the first call: a thread that may open no files can
// ask when another has asked before.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline size_t residentMemory() { return 0; }
#elif defined(_WIN32)
size_t residentMemory();
#elif defined(__linux__)
inline size_t residentMemory() {
  constexpr long kFewFaults = 16;  // a thread that had no more has taken next to nothing
  static thread_local long faults = 0;
  static thread_local size_t resident = 0;
  rusage usage;
  if (resident != 0 && getrusage(RUSAGE_THREAD, &usage) == 0 && usage.ru_minflt - faults < kFewFaults) return resident;
  faults = resident != 0 ? usage.ru_minflt : 0;
  static const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  char text[64] = {};  // pages of the program's size, pages that are resident, and more
  unsigned long pages = 0;
  if (file < 0 || pread(file, text, sizeof text - 1, 0) <= 0 || std::sscanf(text, "%*u %lu", &pages) != 1) return 0;
  return resident = pages * size_t(sysconf(_SC_PAGESIZE));
}
#else
inline size_t residentMemory() { return 0; }
#endif
