// The records of the built-in types: how each is read, made, printed, measured, copied, scanned and hashed.
#pragma once

#include "bob/base/value.h"

void bobMakeTypeRecords(BobInterp* interp);
