// A value of a running page as text for people: what it is, and what lies in it, in a line each.
#pragma once

#include <cstddef>
#include <string>

class PageRun;

struct ValueTreeLimits {
  int depth = 3;        // of what lies in what
  size_t members = 20;  // shown of each
  size_t lines = 200;   // in all
};

// Evaluates the expression as a line of the console would be, but the value isn't printed there. Empty after an error,
// which the console has got, and while no page is open.
//
// What surprises: a property of a native kind is read by running the player's code for it.
std::string valueTree(PageRun& run, const std::string& expression, const ValueTreeLimits& limits = {});
