// kpg compile: a source file of the language becomes an object file.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void compile(const std::string& source, const std::string& object) {
  StandardRuntime runtime;
  failUnless(compileBobFile(runtime, source, object));
}

}  // namespace

void addCompileCommand(CommandLine& line) {
  struct Options {
    std::string source, object;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("compile", "Compile a source file to an object file");
  command.add("source", options->source, "The source file").required().type("IN.bob");
  command.add("-o,--out,--output", options->object, "The object file to write; - for the standard output")
      .required()
      .type("OUT.bobo");
  command.runs([options] { compile(options->source, options->object); });
}
