// The language on the C library's streams, for the commands that run it without a page.
#pragma once

#include <cstdio>

#include "kit/errors.h"
#include "kit/run/bobtools.h"

class StandardOutput : public BobStream {
 public:
  explicit StandardOutput(FILE* file) : file(file) {}
  int PutC(int c) override { return std::fputc(c, file); }

 private:
  FILE* file;
};

class StandardInput : public BobStream {
 public:
  int GetC() override { return std::fgetc(stdin); }
};

struct StandardRuntime : BobRuntime {
  StandardRuntime() {
    bobSetStdin(interp, &in);
    bobSetStdout(interp, &out);
    bobSetStderr(interp, &err);
    // Whoever read has gone, or the disk is full: a program that only prints would never notice.
    bobSetRest(interp, [](BobInterp* running) {
      if (std::ferror(stdout)) bobRaise(running, kBobRestart);
    });
  }

  StandardInput in;
  StandardOutput out{stdout}, err{stderr};
};

// Ends a command with exit status 1 when the language has reported an error.
inline void failUnless(bool ok) {
  if (!ok) throw KitError("");
}
