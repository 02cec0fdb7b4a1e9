// The machine: an accumulator machine over the value stack.
//
// Expressions leave their result in `val`; binary instructions take the left operand from the stack.
#pragma once

#include "bob/base/value.h"

// Runs from the interpreter's registers until a top frame returns.
void bobExecute(BobInterp* interp);
