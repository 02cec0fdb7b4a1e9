// Members that a value has through a class object: those of the value kinds (Method, Symbol, Integer, Float, String,
// Vector) and those of native kinds. A member is a plain property, or a row with a getter and a setter.
#pragma once

#include "bob/base/value.h"

// The class object whose members a value of such a kind has.
BobValue bobClassOf(BobInterp* interp, BobValue value);
// The value found under the key, or what its getter returns for the object when it is a property row.
BobValue bobDeliver(BobInterp* interp, BobValue object, BobValue key, BobValue found);

// Slots of the type records.
bool bobGetValueProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetValueProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
bool bobGetCObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetCObjectProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
