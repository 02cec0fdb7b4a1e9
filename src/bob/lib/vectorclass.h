// The class Vector, its members and methods.
#pragma once

#include "bob/base/value.h"

void bobInitVectorClass(BobInterp* interp);
