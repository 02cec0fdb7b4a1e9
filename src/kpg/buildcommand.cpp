// kpg build: a page source becomes a page.
#include <iostream>
#include <memory>

#include "kit/source/pagebuild.h"
#include "kpg/commands.h"

void addBuildCommand(CommandLine& line) {
  struct Options {
    std::string source, output;
    PageSourceOptions page;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("build", "Compile a page source");
  command.add("source", options->source, "The page source, YAML").required().type("PAGE.yaml");
  command.add("-o,--out", options->output, "The page to write; - for the standard output").required().type("PAGE.kpg");
  command.flag("--strip", options->page.strip, "Leave out the names of scripts, by which an error says where it is");
  command.runs([options] {
    buildPage(
        options->source, options->output, [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; },
        options->page);
  });
}
