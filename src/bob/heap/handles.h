// Numbers for native pointers, since a word of the heap can't hold one. A number that has been released reads as null
// from then on, in every object that has it.
#pragma once

#include "bob/base/value.h"

// 0 when there are too many.
uint32_t bobMakeHandle(BobInterp* interp, void* pointer);
void* bobHandlePointer(const BobInterp* interp, uint32_t handle);
void bobReleaseHandle(BobInterp* interp, uint32_t handle);
