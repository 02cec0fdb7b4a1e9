// The class Method and its methods.
#pragma once

#include "bob/base/value.h"

void bobInitMethodClass(BobInterp* interp);
