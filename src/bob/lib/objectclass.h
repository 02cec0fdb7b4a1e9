// The class Object and its methods.
#pragma once

#include "bob/base/value.h"

void bobInitObjectClass(BobInterp* interp);
