// Where the scripts of a run were written: those that were compiled for it, and those of the pages and object files
// that it reads, by the line tables beside them.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "bob/bob.h"
#include "kit/errors.h"
#include "kit/lines/codeplaces.h"

class ScriptPlaces {
 public:
  // Keeps the lines of all that the interpreter compiles from files. `nameOf` says where a file is, by the name that a
  // script or a command gave.
  void listen(BobInterp* interp, std::function<std::string(const std::string& source)> nameOf);
  void add(const std::vector<BobCodeLines>& lines) { places.add(lines); }

  // "FILE:LINE" of each piece of running code, the innermost first; empty for one that isn't known. The tables of files
  // that were read since are looked for when they are needed.
  std::vector<std::string> runningPlaces(BobInterp* interp, const std::set<std::filesystem::path>& read);

  // Of one of the places where the code was written, or null if that isn't known.
  const BobCodeLines* linesOf(BobInterp* interp, BobValue code, const std::set<std::filesystem::path>& read);
  // All code that is known by now.
  const CodePlaces& known() const { return places; }

  // What was wrong with tables.
  const std::vector<KitMessage>& warnings() const { return warned; }

 private:
  void readTables(const std::set<std::filesystem::path>& read);

  CodePlaces places;
  std::set<std::filesystem::path> tried;
  std::vector<KitMessage> warned;
};
