// The options by which a command is asked to do something with a page: --key, --wait, --eval and --play, in their
// order.
#pragma once

#include <vector>

#include "kit/run/pageaction.h"
#include "kit/run/runlimits.h"
#include "kpg/commandline.h"

// --read-only, which tests have always.
void addReadOnly(KpgCommand& command, RunLimits& limits);
// What the page may use: --files and --max-memory, which is 128 by default.
void addSpaceLimits(KpgCommand& command, RunLimits& limits);
// Those, --timeout, which is 10 by default, and --max-steps.
void addRunLimits(KpgCommand& command, RunLimits& limits);

// `take` gets each action.
void addPageActions(KpgCommand& command, const std::function<void(const PageAction&)>& take);
