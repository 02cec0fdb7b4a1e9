// An interpreter of the player's size without files, for one input of a fuzz target. A script that doesn't end is
// ended, in the ordinary builds, too, where the corpus is a test.
#pragma once

#include "bob/bob.h"

struct FuzzInterp {
  FuzzInterp() : interp(bobMakeInterp(102400, 0, 65536)) {
    bobRegisterGlobals(interp);
    bobInitCompiler(interp);
    bobRestOften(interp, 20'000);
    bobSetRest(interp, [](BobInterp* i) { bobRaise(i, kBobExit); });
    bobSetOpenFile(interp, [](const char*, const char*) { return std::unique_ptr<BobStream>(); });
  }
  ~FuzzInterp() {
    bobCollect(interp);
    bobDestroyInterp(interp);
  }
  operator BobInterp*() const { return interp; }

  BobInterp* interp;
};
