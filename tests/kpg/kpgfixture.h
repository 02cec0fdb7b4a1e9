// Runs the program as its users call it.
#pragma once

#include <sys/wait.h>

#include "kit/files.h"
#include "support/pagefixture.h"

class KpgTest : public PageTest {
 protected:
  // Exit status; standard output and error stream are left in `out` and `err`. The shell carries out `first` before.
  int kpg(const std::string& arguments, const std::string& first = "") {
    const int status = std::system((first + KPG_PROGRAM + " " + arguments + " >out.txt 2>err.txt").c_str());
    out = text("out.txt");
    err = text("err.txt");
    return WEXITSTATUS(status);
  }
  // A line for the shell, in which kpg is the program; the exit status of its last command.
  static int shell(const std::string& line) {
    return WEXITSTATUS(std::system(("kpg() { " KPG_PROGRAM " \"$@\"; }; " + line).c_str()));
  }
  static std::string text(const std::string& name) {
    const auto bytes = readFile(name);
    return {bytes.begin(), bytes.end()};
  }
  std::string out, err;
};
