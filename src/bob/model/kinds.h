// Classes: native kinds with their instances, class objects for value kinds, and plain ones.
//
// A native kind is a type record of its own. Its instances carry extra bytes, by default one handle (heap/handles.h)
// to something of the host's; native pointers never go into objects.
#pragma once

#include "bob/model/rows.h"

// The tables may be null throughout.
void bobAddMethodRows(BobInterp* interp, BobValue object, const BobMethodRow* rows);
void bobAddPropertyRows(BobInterp* interp, BobValue object, const BobPropertyRow* rows);
// The rows as globals of the current scope.
void bobBindFunctions(BobInterp* interp, const BobMethodRow* rows);

// The class object Object, parent of what a host makes for scripts.
BobValue bobObjectClass(const BobInterp* interp);
// A plain class object, bound in the current scope unless the name is null.
BobValue bobMakeClass(BobInterp* interp, const char* name, BobValue parent, const BobMethodRow* methods);
// A class object for a value kind, bound to the record's name.
BobValue bobMakeValueClass(BobInterp* interp, uint32_t type, const BobMethodRow* methods,
                           const BobPropertyRow* properties);

// A kind of native objects, its class bound in the current scope: 0 if there is no memory. The parent kind may be 0.
uint32_t bobMakeKind(BobInterp* interp, uint32_t parentKind, const char* name, const BobMethodRow* methods,
                     const BobPropertyRow* properties, uint32_t extraSize = 4);
void bobSetFinalizer(BobInterp* interp, uint32_t kind, void (*finalizer)(BobInterp*, BobValue object));
// Whether the value is of the kind, or of one that descends from it.
bool bobIsOfKind(BobInterp* interp, BobValue value, uint32_t kind);

// A new instance of the kind, its extra bytes zero.
BobValue bobMakeNative(BobInterp* interp, uint32_t kind);
// The handle word of an instance, and the pointer that it represents: null if none was set or it has been released.
uint32_t& bobHandleOf(BobInterp* interp, BobValue object);
void* bobNativePointer(BobInterp* interp, BobValue object);
// The extra bytes of an instance; they move with it.
uint8_t* bobExtraBytes(BobInterp* interp, BobValue object);
// The parent word of an instance, which its kind may use as it likes: the language doesn't look at it.
BobValue bobParentOf(BobInterp* interp, BobValue object);
void bobSetParent(BobInterp* interp, BobValue object, BobValue parent);

// The kind of class objects, which is its own class.
void bobMakeTypeKind(BobInterp* interp);
// The New slot of the type record of CObject.
BobValue bobNewCObject(BobInterp*, BobValue value);
