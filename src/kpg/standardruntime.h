// The language on the C library's streams, for the commands that run it without a page.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

#include "kit/errors.h"
#include "kit/run/bobtools.h"
#include "kit/run/longtext.h"

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

class StandardRuntime : public BobRuntime {
 public:
  // What runs for longer than `limitSeconds` of processor time in all is ended; 0 for no limit.
  explicit StandardRuntime(double limitSeconds = 0) : limit(limitSeconds) {
    bobSetStdin(interp, &in);
    bobSetStdout(interp, &out);
    bobSetStderr(interp, &err);
    current = this;
    bobSetErrorHandler(interp, printError);
    bobSetRest(interp, [](BobInterp* running) { current->rest(running); });
    bobRestOften(interp, kStepsBetweenLooks);
  }

  // From here on an error names the lines of the sources, too, on the error stream.
  void namePlaces() {
    namesPlaces = true;
    places.listen(interp, [](const std::string& source) { return source; });
  }

  // Ends a command with exit status 1 when the language has reported an error, or was ended.
  void failUnless(bool ok) const {
    if (!stopped.empty()) throw KitError(stopped);
    if (!ok) throw KitError("");
  }

 private:
  static constexpr uint32_t kStepsBetweenLooks = 1 << 14;

  void rest(BobInterp* running) {
    // Whoever read has gone, or the disk is full: a program that only prints would never notice.
    if (std::ferror(stdout)) bobRaise(running, kBobRestart);
    if (limit == 0 || double(std::clock()) / CLOCKS_PER_SEC < limit) return;
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%g", limit);
    const std::string name = stopped.empty() ? bobRunningName(running) : "";
    if (stopped.empty())
      stopped = std::string("stopped after ") + seconds + (limit == 1 ? " second" : " seconds") + " of processor time" +
                (name.empty() ? "" : " in " + name) + "; --timeout sets another limit, 0 for none";
    bobRaise(running, kBobRestart);
  }

  static void printError(BobInterp* interp, int code, const BobErrorArgument& argument) {
    printTraceback(interp, code, argument);
    if (!current->namesPlaces || code == kBobRestart) return;
    const std::string lines = errorPlaces(interp, code, current->places);
    bobPutText(&current->err, isatty(STDERR_FILENO) ? cutInTheMiddle(lines) : lines);
  }

  // For people a traceback of thousands of lines is cut; programs get it whole.
  static void printTraceback(BobInterp* interp, int code, const BobErrorArgument& argument) {
    if (!isatty(STDOUT_FILENO)) return bobStandardErrorHandler(interp, code, argument);
    BobTextStream traceback;
    bobSetStdout(interp, &traceback);
    bobStandardErrorHandler(interp, code, argument);
    bobSetStdout(interp, &current->out);
    for (const char c : cutInTheMiddle(traceback.text)) current->out.PutC(c);
  }

  inline static StandardRuntime* current = nullptr;  // the only one of a command

  StandardInput in;
  StandardOutput out{stdout}, err{stderr};
  double limit;
  std::string stopped;
  bool namesPlaces = false;
  ScriptPlaces places;
};
