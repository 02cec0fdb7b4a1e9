// The global functions that need no compiler: Type, Hash, toString, rand, gc, LoadObjectFile, Quit.
#pragma once

#include "bob/base/value.h"

void bobRegisterGlobals(BobInterp* interp);
