// The native kind File. An instance holds the handle of a stream that the interpreter owns; no handle means closed.
#pragma once

#include "bob/base/value.h"

class BobStream;

void bobInitFileKind(BobInterp* interp);

// The stream of a File, or null if it is closed.
BobStream* bobFileStream(BobInterp* interp, BobValue file);
// The same for an optional argument: nil means the standard output.
BobStream* bobOutputFor(BobInterp* interp, BobValue file);
