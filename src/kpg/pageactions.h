// The options by which a command is told what to do with a page: --key, --wait, --eval and --play, in their order.
#pragma once

#include <memory>
#include <vector>

#include "kit/run/pageaction.h"
#include "kpg/commandline.h"

void addPageActions(KpgCommand& command, const std::shared_ptr<std::vector<PageAction>>& into);
