// The bytes of strings as elements: slots of the type record of String.
#pragma once

#include "bob/base/value.h"

bool bobGetStringProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetStringProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewString(BobInterp*, BobValue value);
