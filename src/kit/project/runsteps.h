// Steps on several threads, each after those that it builds on.
#pragma once

#include <functional>
#include <vector>

#include "kit/project/plan.h"

// Calls run(number) once for each step. What it throws is thrown here, when the steps that have begun have ended; no
// more begin. `jobs` 0 is as many threads as the machine runs at once.
void runSteps(const std::vector<BuildStep>& steps, size_t jobs, const std::function<void(size_t)>& run);
