// The collector: copies what is reachable from one space to the other.
//
// It knows nothing of single types: their records (BobTypeRecord) say how large an object is, how it is copied and
// what it refers to. Roots are copied first; then the new space is read from its start, object by object, and what
// each refers to is copied to the end, until the reading has caught up. An object that has been copied leaves a broken
// heart with its new offset in the old space:
//
//     old space                          new space
//     [Object a: parent, props, 1]       [Object a': parent', props, 1]     a' has been read, props not yet
//       becomes [BrokenHeart, a']          ^start      ^read up to here ^free
//
// Native instances hang in a list of their space; those of the old space that became no broken hearts are dead.
#pragma once

#include "bob/base/value.h"

// One collection; reports it on stderrStream.
void bobCollect(BobInterp* interp);
// For a host's hook: where the value is after this collection.
BobValue bobCopyValue(BobInterp* interp, BobValue value);
