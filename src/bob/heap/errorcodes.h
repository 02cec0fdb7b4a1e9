// The codes of errors, and what a message says beside its own words.
#pragma once

#include "bob/base/value.h"

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
  kBobRestart = 10,  // unwinds without a message
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
