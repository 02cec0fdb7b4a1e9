// The global functions that come with the compiler: Load, Eval, CompileFile.
#pragma once

#include "bob/base/value.h"

void bobRegisterCompilerGlobals(BobInterp* interp);
