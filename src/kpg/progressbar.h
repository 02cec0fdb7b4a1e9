// One line on a terminal that shows how far a build is.
#pragma once

#include <cstddef>
#include <string>

class ProgressBar {
 public:
  ProgressBar();  // on the error stream, if that is a terminal
  ~ProgressBar() { clear(); }

  bool isShown() const { return shown; }
  void show(size_t done, size_t all, const std::string& what);
  void clear();  // before anything else is printed

 private:
  bool shown, colored, drawn = false;
};
