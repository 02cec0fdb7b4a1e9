// The classes Integer and Float and their methods.
#pragma once

#include "bob/base/value.h"

void bobInitIntegerClass(BobInterp* interp);
void bobInitFloatClass(BobInterp* interp);
