// Dependencies in the syntax of make, as other build systems read them.
#pragma once

#include <string>
#include <vector>

std::string depfileText(const std::string& target, const std::vector<std::string>& inputs);
