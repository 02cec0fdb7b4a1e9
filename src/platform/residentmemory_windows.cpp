#include "platform/residentmemory.h"

#include <windows.h>

#include <psapi.h>

size_t residentMemory() {
  PROCESS_MEMORY_COUNTERS counters;
  return K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) ? counters.WorkingSetSize : 0;
}
