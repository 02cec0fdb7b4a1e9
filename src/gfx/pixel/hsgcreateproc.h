// Numbers for the procedures that rebuild flattened objects.
//
// A flattened effect, in a strike descriptor or in a buffer, begins with such a number and never holds an address. A
// procedure keeps its number for the life of the library that it was registered with.
#pragma once

#include <cstdint>

class hsGSizedFlattenable;

// Rebuilds an object for a size (below 1 for its own) from what its Flatten wrote, and moves the cursor past it.
// The caller holds a reference to the result, which may be null.
using hsGCreateProc = hsGSizedFlattenable* (*)(const void** cursor, int32_t size);

// Above 0.
uint32_t hsGRegisterCreateProc(hsGCreateProc proc);
// Null for a number that was never given out.
hsGCreateProc hsGFindCreateProc(uint32_t number);
