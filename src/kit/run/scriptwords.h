// The names that a line of the console may go on with, as the scripts of a running page have them now.
//
// What surprises: a name after a dot is any that the interpreter knows, since the language asks only when it runs.
#pragma once

#include <string>
#include <vector>

class PageRun;

struct ScriptWords {
  std::vector<std::string> globals;    // that the console sees
  std::vector<std::string> selectors;  // what may follow a dot: names of widgets, properties and methods
};

// Both in the order of the alphabet, each name once. Runs no script.
ScriptWords scriptWords(PageRun& run);
