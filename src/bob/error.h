// Errors of the language: their codes and messages, and how one is raised.
//
// Raising calls the interpreter's error handler, which prints, and then leaves through a C++ exception that never
// passes the subsystem's entry points (bobTry). What a native method holds must therefore clean up after itself.
#pragma once

#include "bob/values.h"

enum BobError : int {
  kBobExit = 0,
  kBobInsufficientMemory = 1,
  kBobStackOverflow = 2,
  kBobTooManyArguments = 3,
  kBobTooFewArguments = 4,
  kBobWrongType = 5,
  kBobUnboundVariable = 6,
  kBobIndexOutOfBounds = 7,
  kBobNoMethod = 8,
  kBobBadOpcode = 9,
  kBobRestart = 10,  // unwinds without a word
  kBobWritingFile = 11,
  kBobBadParseCode = 12,
  kBobImpossible = 13,
  kBobNotAnIndex = 14,
  kBobReadOnly = 15,
  kBobWriteOnly = 16,
  kBobFileNotFound = 17,
  kBobNoInstances = 18,
  kBobNoProperty = 19,
  kBobStackEmpty = 20,
  kBobNotObjectFile = 21,
  kBobWrongVersion = 22,
  kBobSyntaxError = 0x1000,
  kBobStoreIntoConstant = 0x1001,
  kBobTooMuchCode = 0x1002,
  kBobTooManyLiterals = 0x1003,
};

// What a message prints beside its own words: %V in it stands for the value, %s for the text, %i for the number.
struct BobErrorArgument {
  BobValue value = kBobNil;
  const char* text = "";
  int32_t number = 0;
};

// Called for every error; when it returns, the raise unwinds.
using BobErrorHandler = void (*)(BobInterp* interp, int code, const BobErrorArgument& argument);

// What travels from a raise to the nearest entry point.
struct BobUnwind {
  int code;
};

[[noreturn]] void bobRaise(BobInterp* interp, int code);
[[noreturn]] void bobRaise(BobInterp* interp, int code, BobValue value);
[[noreturn]] void bobRaiseText(BobInterp* interp, int code, const char* text);
[[noreturn]] void bobRaiseNumber(BobInterp* interp, int code, int32_t number);

// The message of a code, as the table has it; "Unknown error" for a code that is not in the table.
const char* bobErrorMessage(int code);

// Prints "Error: ", the message and a newline on stderrStream.
void bobPrintError(BobInterp* interp, int code, const BobErrorArgument& argument);
// Prints where the running code is and who called it on stdoutStream.
void bobPrintTraceback(BobInterp* interp);
// The handler that an interpreter starts with: both of the above, except for kBobRestart.
void bobStandardErrorHandler(BobInterp* interp, int code, const BobErrorArgument& argument);
