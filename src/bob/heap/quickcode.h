// The quick codes of an interpreter, by number. Each lives as long as the CompiledCode that carries its number.
#pragma once

#include "bob/heap/interp.h"

// Keeps the quick code and writes its number into `code`. Raises "Insufficient memory" if there are too many.
BobQuickCode& bobKeepQuickCode(BobInterp* interp, BobValue code, std::unique_ptr<BobQuickCode> quick);

// The collector found the code of that number alive (0: it has none); at the end, those of dead code go.
void bobMarkQuickCode(BobInterp* interp, uint32_t number);
void bobSweepQuickCode(BobInterp* interp);
