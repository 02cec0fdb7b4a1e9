// The classes String and Symbol, their members and methods.
#pragma once

#include "bob/base/value.h"

void bobInitStringClass(BobInterp* interp);
void bobInitSymbolClass(BobInterp* interp);
