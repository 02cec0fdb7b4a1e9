// The disassembler: the instructions of a piece of code, one a line.
#pragma once

#include <functional>

#include "bob/base/stream.h"
#include "bob/base/value.h"

// Called before each instruction is listed; must not allocate in the heap.
using BobListingNote = std::function<void(BobValue code, uint32_t offset)>;

// Lists the code; code without a String of bytecode lists nothing.
void bobDisassemble(BobInterp* interp, BobValue code, BobStream* stream, const BobListingNote& note = {});
// The same, then that of the functions among its literals, and of those in them.
void bobDisassembleAll(BobInterp* interp, BobValue code, BobStream* stream, const BobListingNote& note = {});
