// kpg clean: removes what builds of a project have written.
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/projectbuild.h"

void addCleanCommand(CommandLine& line) {
  struct Options {
    std::string project, output;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("clean", "Remove what builds of a project have written, and nothing else");
  addProjectFolder(command, options->project);
  command.add("-o,--out", options->output, "Where its files were built, if not where it says").type("FOLDER");
  command.runs([options] {
    const Project project = openProject(options->project, options->output);
    const auto removed = cleanProject(project, [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; });
    std::cout << removed.size() << (removed.size() == 1 ? " file" : " files") << " removed\n";
  });
}
