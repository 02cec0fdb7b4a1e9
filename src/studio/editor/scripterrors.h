// Errors of a page's scripts as messages with a place, for whoever opens the place in an editor.
#pragma once

#include <string>
#include <vector>

#include "kit/errors.h"

// `complaints` are those of a run with their places (PageRun::complaintsWithPlaces); what isn't an error of a script is
// left out. The place is that of the innermost code that has one; of equal errors the first counts.
std::vector<KitMessage> scriptErrors(const std::vector<std::string>& complaints);
