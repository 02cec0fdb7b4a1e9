// The options by which a command is asked to do something with a page: --key, --wait, --eval and --play, in their
// order.
#pragma once

#include <vector>

#include "kit/run/pageaction.h"
#include "kpg/commandline.h"

// How much processor time, in seconds, what runs may take: --timeout, 10 by default.
void addTimeLimit(KpgCommand& command, double& seconds);

// `take` gets each action.
void addPageActions(KpgCommand& command, const std::function<void(const PageAction&)>& take);
