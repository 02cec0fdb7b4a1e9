// The options that say what to do with a page, in their order; of shot and film.
#pragma once

#include <vector>

#include "kit/run/pageaction.h"
#include "kpg/commandline.h"

// `take` gets each action.
void addPageActions(KpgCommand& command, const std::function<void(const PageAction&)>& take);
