// kpg decode: prints the instructions of a source or object file, and the lines that they come from.
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void decode(const std::string& path) {
  StandardRuntime runtime;
  runtime.failUnless(
      listBobFile(runtime, path, [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; }));
}

}  // namespace

void addDecodeCommand(CommandLine& line) {
  auto path = std::make_shared<std::string>();
  KpgCommand command =
      line.command("decode", "Print the instructions of a source or object file, below their lines of the source");
  command.add("file", *path, "The source or object file").required().type("FILE");
  command.runs([path] { decode(*path); });
}
