// Scripts of pages: compiled for a page, and listed from one.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "bob/compile/statementreader.h"
#include "kit/run/bobruntime.h"

// An error in a script; `line` counts from 1 inside the script.
struct ScriptError : std::runtime_error {
  ScriptError(int l, const std::string& message) : std::runtime_error(message), line(l) {}
  int line;
};

class ScriptCompiler {
 public:
  ScriptCompiler();

  // The records of all statements, as a page keeps them. Throws ScriptError.
  std::string compile(std::string_view source, const BobCodeNames& names = {});
  // A whole object file.
  std::string compileFile(std::string_view source, const BobCodeNames& names = {});

 private:
  // Keeps the first error's message and line.
  struct ErrorStream : BobTextStream {
    int line = 0;
  };
  static void keepError(BobInterp* interp, int code, const BobErrorArgument& argument);

  BobRuntime runtime;
  ErrorStream errors;
};

// The instructions of compiled records, as far as they are sound.
std::string listScript(std::string_view records);
