// Scripts of pages: compiled for a page, and listed from one.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bob/compile/statementreader.h"
#include "bob/tools/textcalls.h"
#include "kit/lines/codeplaces.h"
#include "kit/run/bobruntime.h"
#include "kit/source/pagetree.h"

// An error in a script, at a place inside the script.
struct ScriptError : std::runtime_error {
  ScriptError(const BobSourcePlace& p, const std::string& message) : std::runtime_error(message), place(p) {}
  BobSourcePlace place;
};

// Where a script comes from, and who wants to know the lines of its code.
struct ScriptOrigin {
  std::string file;
  BobLineOfPlace lineOf;  // empty for a script that is the whole file
  std::vector<BobCodeLines>& lines;
};

class ScriptCompiler {
 public:
  ScriptCompiler();

  // The records of all statements, as a page keeps them. Throws ScriptError.
  std::string compile(std::string_view source, const BobCodeNames& names = {}, const ScriptOrigin* origin = nullptr);
  // A whole object file.
  std::string compileFile(std::string_view source, const BobCodeNames& names = {},
                          const ScriptOrigin* origin = nullptr);
  // The pages that a script which compiles opens by names that it spells out; a computed name can't be known.
  std::vector<BobTextCall> pagesLoaded(std::string_view source);

 private:
  // Keeps the first error's message and place.
  struct ErrorStream : BobTextStream {
    BobSourcePlace place;
  };
  static void keepError(BobInterp* interp, int code, const BobErrorArgument& argument);

  BobRuntime runtime;
  ErrorStream errors;
};

// An object file of a source file, with its lines and without a name of its own. Throws KitError.
ScriptFile compileScriptFile(const std::string& path, const BobCodeNames& names);

class ScriptLister {
 public:
  ScriptLister();

  // The instructions of compiled records, as far as they are sound.
  std::string list(std::string_view records);

 private:
  BobRuntime runtime;
  BobTextStream listing;
};
