// kpg compile: a source file of the language becomes an object file.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

struct CompileOptions {
  std::string source, object;
  bool names = false;
};

void compile(const CompileOptions& options) {
  StandardRuntime runtime;
  const BobCodeNames names = options.names ? codeNamesByLine(options.source) : nullptr;
  runtime.failUnless(compileBobFile(runtime, options.source, options.object, names));
}

}  // namespace

void addCompileCommand(CommandLine& line) {
  auto options = std::make_shared<CompileOptions>();
  KpgCommand command = line.command("compile", "Compile a source file to an object file");
  command.add("source", options->source, "The source file").required().type("IN.bob");
  command.add("-o,--out,--output", options->object, "The object file to write; - for the standard output")
      .required()
      .type("OUT.bobo");
  command.flag("--names", options->names, "Name the code FILE:LINE, for tracebacks, as the build of a page does");
  command.runs([options] { compile(*options); });
}
