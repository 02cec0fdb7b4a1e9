// Raising an error.
//
// It calls the interpreter's error handler, which reports (run/report.h), and then leaves through a C++ exception that
// never passes the language's entry points (bobTry). What a native method holds must therefore clean up after itself.
#pragma once

#include "bob/heap/errorcodes.h"

// What travels from a raise to the nearest entry point.
struct BobUnwind {
  int code;
};

[[noreturn]] void bobRaise(BobInterp* interp, int code);
[[noreturn]] void bobRaise(BobInterp* interp, int code, BobValue value);
[[noreturn]] void bobRaiseText(BobInterp* interp, int code, const char* text);
[[noreturn]] void bobRaiseNumber(BobInterp* interp, int code, int32_t number);
