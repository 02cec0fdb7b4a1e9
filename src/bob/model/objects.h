// Properties of any value, by way of its type record, and those of plain objects.
#pragma once

#include "bob/base/value.h"

// False if there is no such property, or none that takes a value. A getter may run, and objects may move.
bool bobGetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value);
bool bobSetProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value);

// Drops all properties.
void bobClearProperties(BobInterp* interp, BobValue object);
BobValue bobCloneObject(BobInterp* interp, BobValue object);

// Slots of the type record of Object.
bool bobGetObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewObject(BobInterp*, BobValue parent);
