// What the kit knows better than the system's log, which has only the player's messages.
#pragma once

#include <string>
#include <vector>

#include "kit/errors.h"

// Why a page, or a page in it, was refused, and why fonts draw nothing. `read` has all files that the run has read.
std::vector<KitMessage> explainRun(const std::string& page, const std::vector<std::string>& unusableFonts,
                                   const std::vector<std::string>& read);
