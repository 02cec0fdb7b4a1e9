// Bob for its host: everything that a program needs to run scripts and to give them classes of its own.
//
// The host makes one interpreter, sets its streams and hooks, adds native kinds, and calls into scripts under bobTry. A
// native method gets the interpreter alone, reads its arguments with bobParse and returns a value. Any allocation can
// move every object, so a value that a native method still needs after one is held in a BobLocal, or read again by
// bobParse.
//
//   BobInterp* interp = bobMakeInterp(102400, 0, 65536);
//   bobRegisterGlobals(interp);
//   bobInitCompiler(interp);
//   bobSetStdout(interp, &console);
//   const uint32_t kind = bobMakeKind(interp, 0, "Lamp", kLampMethods, kLampProperties);
//   bobConsoleEvaluate(bobRootScope(interp), "new Lamp().Switch(true);");
#pragma once

#include "bob/base/stream.h"
#include "bob/base/value.h"
#include "bob/debug/coverage.h"
#include "bob/debug/debugger.h"
#include "bob/debug/profiler.h"
#include "bob/embed/interpreter.h"
#include "bob/heap/collector.h"
#include "bob/heap/handles.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/lib/globals.h"
#include "bob/model/kinds.h"
#include "bob/model/objects.h"
#include "bob/model/openfile.h"
#include "bob/model/print.h"
#include "bob/model/scopes.h"
#include "bob/model/signature.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"
#include "bob/run/calls.h"
#include "bob/run/report.h"
#include "bob/run/runningcode.h"
#include "bob/run/source.h"
#include "bob/run/trace.h"
#include "bob/tools/codehash.h"
#include "bob/tools/objectread.h"
#include "bob/tools/objectwrite.h"
