#include "bob/heap/local.h"

#include "bob/heap/interp.h"

BobLocal::BobLocal(BobInterp* interp, BobValue value) : BobLocal(interp->locals, value) {}
