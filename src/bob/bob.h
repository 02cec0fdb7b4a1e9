// Bob for its host: everything that a program needs to run scripts and to give them classes of its own.
//
// The host makes one interpreter, sets its streams and hooks (embed/interpreter.h), adds native kinds, and calls
// into scripts under bobTry. A native method gets the interpreter alone, reads its arguments with bobParse
// (signature.h) and returns a value. Any allocation can move every object, so a value that a native method still
// needs after one is held in a BobLocal, or read again from argv. Native pointers never go into objects: an instance
// holds a handle, and a handle whose pointer has been released reads as null in every instance that has it.
//
//   BobInterp* interp = bobMakeInterp(102400, 0, 65536);
//   bobRegisterGlobals(interp);
//   bobInitCompiler(interp);
//   bobSetStdout(interp, &console);
//   const uint32_t kind = bobMakeKind(interp, 0, "Lamp", kLampMethods, kLampProperties);
//   bobConsoleEvaluate(bobRootScope(interp), "new Lamp().Switch(true);");
#pragma once

#include <initializer_list>
#include <string_view>

#include "bob/embed/interpreter.h"
#include "bob/interp.h"
#include "bob/objectfile.h"
#include "bob/objects.h"
#include "bob/print.h"
#include "bob/signature.h"
#include "bob/stdlib.h"
#include "bob/vm.h"

// -- native classes

// Rows of static tables; a null name ends a table. They must outlive the interpreter.
struct BobMethodRow {
  const char* name;
  BobNative function;
};
struct BobPropertyRow {
  const char* name;
  BobValue (*getter)(BobInterp*, BobValue object);              // null: write-only
  void (*setter)(BobInterp*, BobValue object, BobValue value);  // null: read-only
};

void bobAddMethodRows(BobInterp* interp, BobValue object, const BobMethodRow* rows);
void bobAddPropertyRows(BobInterp* interp, BobValue object, const BobPropertyRow* rows);
// A plain class object, bound in the current scope unless the name is null. The tables may be null here and below.
BobValue bobMakeClass(BobInterp* interp, const char* name, BobValue parent, const BobMethodRow* methods);
// A kind of native objects, its class bound in the current scope: 0 if there is no memory. The parent kind may be 0.
// Instances carry extraSize bytes: by default one handle.
uint32_t bobMakeKind(BobInterp* interp, uint32_t parentKind, const char* name, const BobMethodRow* methods,
                     const BobPropertyRow* properties, uint32_t extraSize = 4);
void bobSetFinalizer(BobInterp* interp, uint32_t kind, void (*finalizer)(BobInterp*, BobValue object));
// A new instance of the kind, its extra bytes zero.
inline BobValue bobMakeNative(BobInterp* interp, uint32_t kind) { return bobMakeInstance(interp, kind); }

// The handle word of an instance, and the pointer behind it: null if none was set or it has been released.
inline bool bobIsA(BobInterp* interp, BobValue value, uint32_t type) { return interp->isA(value, type); }
// The parent word of an instance, which its kind may use as it likes: the language doesn't look at it.
inline BobValue bobParentOf(BobInterp* interp, BobValue object) { return interp->words(object)[BobLayout::kParent]; }
inline void bobSetParent(BobInterp* interp, BobValue object, BobValue parent) {
  interp->words(object)[BobLayout::kParent] = parent;
}
inline uint32_t& bobHandleOf(BobInterp* interp, BobValue object) {
  return interp->words(object)[BobLayout::kNativePointer];
}
inline void* bobNativePointer(BobInterp* interp, BobValue object) {
  return bobHandlePointer(interp, bobHandleOf(interp, object));
}
// The extra bytes of an instance; they move with it.
inline uint8_t* bobExtraBytes(BobInterp* interp, BobValue object) {
  return interp->bytes(object) + BobLayout::kCObjectWords * 4;
}

// -- calls into scripts; each raises what the callee raises, so the outermost goes through bobTry

BobValue bobCall(BobScope* scope, BobValue function, std::initializer_list<BobValue> arguments);
BobValue bobCallByName(BobScope* scope, std::string_view name, std::initializer_list<BobValue> arguments);
BobValue bobSend(BobInterp* interp, BobValue object, BobValue selector, std::initializer_list<BobValue> arguments);
BobValue bobSend(BobInterp* interp, BobValue object, std::string_view selector,
                 std::initializer_list<BobValue> arguments);

// Runs `body` under an unwind target: false if an error arrived (it has been printed), with the registers as before.
template <typename Body>
bool bobTry(BobInterp* interp, Body body) {
  BobSavedFrame saved(interp);
  try {
    body();
    return true;
  } catch (const BobUnwind&) {
    saved.restore();
    return false;
  }
}

// -- source text

// Compiles and runs one statement of the text, and prints "--> ", its value and a newline on stdoutStream; after an
// error it prints no value and gives false.
bool bobConsoleEvaluate(BobScope* scope, std::string_view text);
