// Evaluating text in the middle of a running program, as if it stood there: with the variables that are seen from it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "bob/debug/codelines.h"
#include "bob/run/runningcode.h"

// Runs `body` as bobTry does, but an error isn't printed: its message comes in `error`. Whatever ran goes on afterwards
// as if nothing had been.
bool bobTryAside(BobInterp* interp, std::string* error, const std::function<void()>& body);

// The variables of an environment and of those around it, the innermost first; names by slot, from 1. `this` and _next
// are among those of a function.
enum class BobVariablesOf { block, function, around };
struct BobVariables {
  BobVariablesOf of;
  std::vector<std::string> names;
};
// Of code at an offset.
std::vector<BobVariables> bobVisibleVariables(const BobCodeLines& lines, uint32_t offset);

// Where the value lies that environment `depth`, counted outward from the frame's innermost one, has in slot `slot`;
// null if there is none. Until the next allocation.
BobValue* bobVariableOf(BobInterp* interp, const BobRunningFrame& frame, uint32_t depth, uint32_t slot);

// An expression, or else a statement, in the frame of that number in bobRunningFrames. Variables that it assigns to are
// assigned to there. Raises what it raises; may collect. `lines` may be null: then it sees globals alone.
BobValue bobEvaluateIn(BobInterp* interp, size_t frame, const BobCodeLines* lines, std::string_view text);
