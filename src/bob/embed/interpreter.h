// An interpreter as its host sees it: made, given its streams and hooks, and asked what it holds.
//
// What lies inside a BobInterp is the language's own business; the functions here are all that a host needs of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "bob/base/stream.h"
#include "bob/base/value.h"
#include "bob/heap/errorcodes.h"

// Null if there is no memory. The expansion size is part of the call and changes nothing: spaces don't grow. A space is
// at most 262,136 bytes, since code counts its elements in 16 bits.
BobInterp* bobMakeInterp(uint32_t heapBytes, uint32_t expansionSize, uint32_t stackWords);
void bobDestroyInterp(BobInterp* interp);
// The compiler and the globals Load, Eval and CompileFile.
void bobInitCompiler(BobInterp* interp);
bool bobHasCompiler(const BobInterp* interp);

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
// How many branches and calls lie between two rests, for a host that can't wait as long as usual.
void bobRestOften(BobInterp* interp, uint32_t steps);
// How scripts open files; the C library's way unless set.
void bobSetOpenFile(BobInterp* interp, std::unique_ptr<BobStream> (*open)(const char* path, const char* mode));
void bobSetErrorHandler(BobInterp* interp, BobErrorHandler handler);

// -- what it holds

// Keeps the value on the stack for as long as the interpreter lives.
void bobKeepOnStack(BobInterp* interp, BobValue value);

struct BobMemory {
  uint32_t heapBytes;    // of the space in use, dead objects included
  uint32_t arenaBytes;   // of the whole arena, up to the end of its growing part
  uint32_t nativeBytes;  // as the collector reports it
  size_t handles;        // ever in use at the same time
  uint32_t spaceBytes;   // of a space
  uint32_t stackWords, stackUsed;
  uint32_t collections;  // so far
};
BobMemory bobMemory(const BobInterp* interp);

// -- for tests: what a collection or a failure at an awkward moment would break comes to light

// Collects now, and at each allocation from here on.
void bobCollectAlways(BobInterp* interp);
// The allocation after `count` more raises "Insufficient memory", once.
void bobFailAllocation(BobInterp* interp, int64_t count);
bool bobHasFailed(const BobInterp* interp);
