// What Apply and Send share: the last argument of either is a vector whose elements are arguments of the call.
#pragma once

#include "bob/base/value.h"

// The last of the native method's arguments; error 5 unless it is of the Vector family.
BobValue bobLastVectorArgument(BobInterp* interp, const uint32_t* argv, int argc);
// Pushes the elements in order and returns their number.
int bobPushElements(BobInterp* interp, BobValue vector);
