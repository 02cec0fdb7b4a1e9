// The standard classes and global functions.
#pragma once

#include "bob/interp.h"

// Each makes its class and binds it; the interpreter's start calls them in the order that its making needs.
void bobInitObjectClass(BobInterp* interp);
void bobInitMethodClass(BobInterp* interp);
void bobInitVectorClass(BobInterp* interp);
void bobInitSymbolClass(BobInterp* interp);
void bobInitStringClass(BobInterp* interp);
void bobInitIntegerClass(BobInterp* interp);
void bobInitFloatClass(BobInterp* interp);
void bobInitFileKind(BobInterp* interp);

// The global functions: Type, Hash, toString, rand, gc, LoadObjectFile, Quit.
void bobRegisterGlobals(BobInterp* interp);

// A class object for a value kind, bound to the record's name. The tables may be null.
BobValue bobMakeValueClass(BobInterp* interp, uint32_t type, const BobMethodRow* methods,
                           const BobPropertyRow* properties);
// The rows as globals of the current scope.
void bobBindFunctions(BobInterp* interp, const BobMethodRow* rows);

// The stream of a File, or null if it is closed.
BobStream* bobFileStream(BobInterp* interp, BobValue file);
