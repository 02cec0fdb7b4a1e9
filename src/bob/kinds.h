// The parts of native kinds that other files of the language need.
#pragma once

#include "bob/interp.h"

// The kind of class objects, which is its own class.
void bobMakeTypeKind(BobInterp* interp);
// A class object for the type record.
BobValue bobMakeTypeInstance(BobInterp* interp, uint32_t type);
// The value found under the key, or what its getter gives for the object when it is a property row.
BobValue bobDeliver(BobInterp* interp, BobValue object, BobValue key, BobValue found);
