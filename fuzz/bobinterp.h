// An interpreter of the player's size without files, for fuzz targets. A script that doesn't end is ended, in the
// ordinary builds, too, where the corpus is a test. One serves a few inputs, since making it takes longer than most of
// them do.
#pragma once

#include <memory>

#include "bob/bob.h"

inline BobInterp* makeFuzzInterp() {
  BobInterp* interp = bobMakeInterp(102400, 0, 65536);
  bobRegisterGlobals(interp);
  bobInitCompiler(interp);
  bobRestOften(interp, 20'000);
  bobSetRest(interp, [](BobInterp* i) { bobRaise(i, kBobExit); });
  return interp;
}

inline BobInterp* fuzzInterp() {
  constexpr int kInputsOfAnInterp = 8;
  static std::unique_ptr<BobInterp, void (*)(BobInterp*)> interp(nullptr, bobDestroyInterp);
  static int inputs = 0;
  if (interp) bobCollect(interp.get());
  if (inputs++ % kInputsOfAnInterp == 0) interp.reset(makeFuzzInterp());
  bobSetOpenFile(interp.get(), [](const char*, const char*) { return std::unique_ptr<BobStream>(); });
  return interp.get();
}
