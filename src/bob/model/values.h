// Making and reading values, and the equality of the language.
#pragma once

#include <string_view>

#include "bob/base/value.h"

// -- making; each may collect

BobValue bobMakeBoxed(BobInterp* interp, int32_t n);
inline BobValue bobMakeInteger(BobInterp* interp, int32_t n) {
  return bobFitsSmall(n) ? bobSmall(n) : bobMakeBoxed(interp, n);
}
BobValue bobMakeFloat(BobInterp* interp, double number);
BobValue bobMakeString(BobInterp* interp, std::string_view text);   // text must not lie in the heap
BobValue bobMakeEmptyString(BobInterp* interp, uint32_t length);    // all zero bytes
BobValue bobMakeUnwrittenString(BobInterp* interp, size_t length);  // to be written at once
BobValue bobMakeVector(BobInterp* interp, uint32_t size);           // all nil
BobValue bobMakeCode(BobInterp* interp, uint32_t count);            // all nil
BobValue bobMakeMethod(BobInterp* interp, BobValue code, BobValue env, BobValue scope);
BobValue bobMakeObject(BobInterp* interp, BobValue parent);

// -- reading, for a host; the language's own files read by the members of BobInterp, inline

// Whether the value's type is exactly that built-in one or that kind.
bool bobIsA(BobInterp* interp, BobValue value, uint32_t type);
bool bobIsInteger(BobInterp* interp, BobValue value);
int32_t bobIntegerValue(BobInterp* interp, BobValue value);
std::string_view bobStringText(BobInterp* interp,
                               BobValue value);  // looks into the heap: gone with the next allocation

// The name of a CompiledCode, a String or nil.
BobValue bobCodeName(BobInterp* interp, BobValue code);
// The CompiledCode of a Method that is no native one.
BobValue bobMethodCode(BobInterp* interp, BobValue method);

// Equality of the language: numbers by value, strings by contents, everything else by identity. A NaN equals every
// number.
bool bobEqual(BobInterp* interp, BobValue left, BobValue right);
