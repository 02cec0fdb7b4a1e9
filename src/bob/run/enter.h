// Entering calls and sends: from slots on the stack to a frame. A native method runs to its end right here.
#pragma once

#include "bob/heap/stack.h"

// Builds the frame of a call, its slots and function pushed: false if the function was native and has finished.
bool bobEnterCall(BobInterp* interp, int slots, BobFrameRecord record);
// The same with a call frame. What the next call to the same code needs goes into the call cache.
void bobEnterCallAndCache(BobInterp* interp, int slots, uint32_t* cache);
// Replaces selector and receiver of a send by this and the method, so that it goes on as a call.
void bobPrepareSend(BobInterp* interp, int slots);
// The same when the lookup object isn't a plain one: the member of a value kind is cached.
void bobPrepareSendAndCache(BobInterp* interp, int slots, uint32_t* cache);
