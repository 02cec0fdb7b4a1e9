// An interpreter as its host sees it: made, given its streams and hooks, and asked what it holds.
//
// What lies inside a BobInterp or a BobScope is the language's own business; the functions here are all that a host
// needs of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "bob/error.h"
#include "bob/stream.h"
#include "bob/values.h"

struct BobScope;

// Null if there is no memory. A space is at most 262,136 bytes, since code counts its elements in 16 bits.
BobInterp* bobMakeInterp(uint32_t heapBytes, uint32_t expansionSize, uint32_t stackWords);
void bobDestroyInterp(BobInterp* interp);
// The compiler and the globals Load, Eval and CompileFile.
void bobInitCompiler(BobInterp* interp);
bool bobHasCompiler(const BobInterp* interp);

// -- scopes

// The outermost scope, and the one that running code is in.
BobScope* bobRootScope(BobInterp* interp);
BobScope* bobCurrentScope(BobInterp* interp);
BobInterp* bobScopeInterp(const BobScope* scope);
BobValue bobScopeObject(const BobScope* scope);

// -- streams; until they are set they read as the end of a file and drop what is written

void bobSetStdin(BobInterp* interp, BobStream* stream);
void bobSetStdout(BobInterp* interp, BobStream* stream);
void bobSetStderr(BobInterp* interp, BobStream* stream);
BobStream* bobStdout(const BobInterp* interp);
BobStream* bobStderr(const BobInterp* interp);

// -- hooks

// Called during each collection, to copy (bobCopyValue) what the host holds of the heap.
void bobSetGcHook(BobInterp* interp, void (*hook)(BobInterp*, void* data), void* data);
// Called after so many branches and calls, so that a host stays alive beside a script that doesn't end. It may raise
// an error but must not run scripts.
void bobSetRest(BobInterp* interp, void (*rest)(BobInterp*));
// How scripts open files; the C library's way unless set.
void bobSetOpenFile(BobInterp* interp, std::unique_ptr<BobStream> (*open)(const char* path, const char* mode));
void bobSetErrorHandler(BobInterp* interp, BobErrorHandler handler);

// -- what it holds

// The class object Object, parent of what a host makes for scripts.
BobValue bobObjectClass(const BobInterp* interp);
// Keeps the value on the stack for as long as the interpreter lives.
void bobKeepOnStack(BobInterp* interp, BobValue value);

struct BobMemory {
  uint32_t heapBytes;    // of the space in use, dead objects included
  uint32_t arenaBytes;   // of the whole arena, up to the end of its growing part
  uint32_t nativeBytes;  // as the collector reports it
  size_t handles;        // ever in use at the same time
};
BobMemory bobMemory(const BobInterp* interp);
