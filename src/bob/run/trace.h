// Attaching a tracer to an interpreter.
#pragma once

#include "bob/base/value.h"
#include "bob/heap/tracer.h"

// Null detaches. False, with nothing changed, while code runs or another tracer is attached. The interpreter doesn't
// own it.
bool bobTrace(BobInterp* interp, BobTracer* tracer);
