// What a profiler has counted, for people and for the tools that they look at profiles with.
#pragma once

#include <functional>
#include <string>

#include "bob/bob.h"

// How a function is called: its name, its place, or both. Those of one name count as one, as the statements in one line
// of a script do; what only continues such a line adds no call.
struct ProfiledName {
  std::string name;
  bool continuesLine = false;
};
using ProfileName = std::function<ProfiledName(const BobProfileFunction& function)>;

// A table of functions, those with the most instructions of their own first: calls, instructions of their own and with
// all that they called, bytes allocated, collections.
std::string profileTable(const BobProfiler& profiler, const ProfileName& nameOf);

// A flame graph: what a function called lies above it, as wide as the instructions that it took.
std::string profileFlameGraph(const BobProfiler& profiler, const ProfileName& nameOf, const std::string& title);

// A file that https://www.speedscope.app opens, by its published format; a profile of instructions, and one of bytes.
std::string profileSpeedscope(const BobProfiler& profiler, const ProfileName& nameOf, const std::string& title);
