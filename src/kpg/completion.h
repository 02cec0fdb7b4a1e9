// Scripts that let a shell complete the commands and options of kpg.
#pragma once

#include <string>
#include <vector>

#include "kpg/commandline.h"

std::string bashCompletion(const std::vector<CommandSummary>& commands);
std::string zshCompletion(const std::vector<CommandSummary>& commands);
std::string fishCompletion(const std::vector<CommandSummary>& commands);
