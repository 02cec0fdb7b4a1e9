#include "bob/run/registers.h"

void bobRestMachine(BobInterp* interp) {
#ifdef BOB_FUEL  // for fuzzing: what has run for too long is stopped without a message
  interp->stepsToRest = 1;
  bobRaise(interp, kBobRestart);
#endif
  interp->stepsToRest = interp->stepsBetweenRests;
  if (interp->rest) interp->rest(interp);
}
