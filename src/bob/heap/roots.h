// What the collector starts from: variables of the language's own files, and what the interpreter itself holds.
#pragma once

#include "bob/base/value.h"

// Makes the variable a root of the collector; it starts as nil. Unprotecting returns false for a variable that isn't
// one.
void bobProtect(BobInterp* interp, BobValue* variable);
bool bobUnprotect(BobInterp* interp, BobValue* variable);

// Copies every root but the registers and the stack.
void bobCopyRoots(BobInterp* interp);
