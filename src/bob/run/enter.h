// Entering calls and sends: from slots on the stack to a frame. A native method runs to its end right here.
#pragma once

#include "bob/heap/stack.h"

// Builds the frame of a call, its slots and function pushed: false if the function was native and has finished.
bool bobEnterCall(BobInterp* interp, int slots, BobFrameRecord record);
// Replaces selector and receiver of a send by this and the method, so that it goes on as a call.
void bobPrepareSend(BobInterp* interp, int slots);
