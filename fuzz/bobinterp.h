// An interpreter of the player's size without files, for one input of a fuzz target.
#pragma once

#include "bob/bob.h"

struct FuzzInterp {
  FuzzInterp() : interp(bobMakeInterp(102400, 0, 65536)) {
    bobRegisterGlobals(interp);
    bobInitCompiler(interp);
    bobSetOpenFile(interp, [](const char*, const char*) { return std::unique_ptr<BobStream>(); });
  }
  ~FuzzInterp() {
    bobCollect(interp);
    bobDestroyInterp(interp);
  }
  operator BobInterp*() const { return interp; }

  BobInterp* interp;
};
