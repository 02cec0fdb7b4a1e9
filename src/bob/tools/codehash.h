// What tells one piece of code from another: a number made of its bytecode and its literals, names and inner functions
// included.
//
// It is the same when the code is compiled, after it has been written and read, and while it runs. Code of the same
// bytes and literals has the same number, wherever it was written.
#pragma once

#include <cstdint>

#include "bob/base/value.h"

// Of a CompiledCode. Allocates nothing and raises nothing.
uint64_t bobCodeHash(BobInterp* interp, BobValue code);
