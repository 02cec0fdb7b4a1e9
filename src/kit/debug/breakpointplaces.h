// The lines that a person has given breakpoints, and those where they can be: a line without code has none, and code is
// known only once it has been compiled.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "bob/bob.h"

struct WantedBreakpoint {
  int number = 0;        // for as long as the client has it
  BobBreakpoint wanted;  // at the line that was asked for
  int line = 0;          // where it is now; 0 for nowhere
};

class BreakpointPlaces {
 public:
  // Replaces those of a file; numbers are given out anew.
  void set(const std::string& file, const std::vector<BobBreakpoint>& all);

  // Lines with code, as far as they are known by now. Returns the breakpoints that this has moved.
  std::vector<WantedBreakpoint> learn(const std::string& file, const std::set<int>& lines);

  const std::vector<WantedBreakpoint>& of(const std::string& file) { return files[file].wanted; }
  // Where they are now, for the debugger.
  std::vector<BobBreakpoint> placed(const std::string& file);

 private:
  struct File {
    std::vector<WantedBreakpoint> wanted;
    std::set<int> lines;
  };
  static int placeOf(const File& file, int line);

  std::map<std::string, File> files;
  int last = 0;
};
