// kpg compile: a source file of the language becomes an object file.
#include <memory>

#include "kit/files.h"
#include "kit/run/bobtools.h"
#include "kpg/commands.h"

namespace {

struct CompileOptions {
  std::string source, object;
  bool names = false, lines = false;
};

void compile(const CompileOptions& options) {
  const BobCodeNames names = options.names ? codeNamesByLine(options.source) : nullptr;
  if (options.lines && isStandardOutput(options.object))
    throw KitError("kpg compile: the line table goes beside the object file, which needs a name");
  compileBobFile(options.source, options.object, {names, options.lines});
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
  command.flag("--lines", options->lines,
               "Write a line table, OUT.bobo.bobmap, by which errors and listings name lines");
  command.runs([options] { compile(*options); });
}
