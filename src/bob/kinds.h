// The parts of making native kinds that the interpreter's start needs.
#pragma once

#include "bob/interp.h"

// The kind of class objects, which is its own class.
void bobMakeTypeKind(BobInterp* interp);
// A class object for the type record.
BobValue bobMakeTypeInstance(BobInterp* interp, uint32_t type);
