// While it lives, what the system itself writes to the C library's standard output goes to the error stream, so that
// the standard output has only what was asked for.
#pragma once

#include <unistd.h>

#include <cstdio>

class StandardOutputAside {
 public:
  StandardOutputAside() {
    std::fflush(stdout);
    kept = dup(STDOUT_FILENO);
    dup2(STDERR_FILENO, STDOUT_FILENO);
  }
  ~StandardOutputAside() {
    std::fflush(stdout);
    dup2(kept, STDOUT_FILENO);
    close(kept);
  }
  StandardOutputAside(const StandardOutputAside&) = delete;
  StandardOutputAside& operator=(const StandardOutputAside&) = delete;

 private:
  int kept;
};
