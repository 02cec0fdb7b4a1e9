// Runs of the machine that native code begins, each on its own stretch of the native stack.
#pragma once

#include "bob/base/value.h"

// With a function and `slots` words of this, _next and arguments pushed: calls it in a run of its own.
BobValue bobRunCall(BobInterp* interp, int slots);
// The same with receiver, selector, lookup object and arguments pushed, the last two counted as slots.
BobValue bobRunSend(BobInterp* interp, int slots);
