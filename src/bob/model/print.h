// Printing and displaying values. Printing puts a String between double quotes; displaying writes its bytes alone.
#pragma once

#include "bob/base/stream.h"
#include "bob/base/value.h"

// Each returns false when the stream refuses a byte. A vector nested too deep (it may hold itself) raises error 2.
bool bobPrint(BobInterp* interp, BobValue value, BobStream* stream);
bool bobDisplay(BobInterp* interp, BobValue value, BobStream* stream);

// Print slots of the type records.
bool bobPrintIdentity(BobInterp*, BobValue value, BobStream*);
bool bobPrintMethod(BobInterp*, BobValue value, BobStream*);
bool bobPrintCode(BobInterp*, BobValue value, BobStream*);
bool bobPrintRow(BobInterp*, BobValue value, BobStream*);
bool bobPrintString(BobInterp*, BobValue value, BobStream*);
bool bobPrintSymbol(BobInterp*, BobValue value, BobStream*);
bool bobPrintInteger(BobInterp*, BobValue value, BobStream*);
bool bobPrintFloat(BobInterp*, BobValue value, BobStream*);
bool bobPrintVector(BobInterp*, BobValue value, BobStream*);
bool bobPrintType(BobInterp*, BobValue value, BobStream*);
