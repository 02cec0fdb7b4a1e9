// The disassembler: the instructions of a piece of code, one a line.
#pragma once

#include "bob/base/stream.h"
#include "bob/base/value.h"

// Lists the code; code without a String of bytecode lists nothing.
void bobDisassemble(BobInterp* interp, BobValue code, BobStream* stream);
// The same, then that of the functions among its literals, and of those in them.
void bobDisassembleAll(BobInterp* interp, BobValue code, BobStream* stream);
