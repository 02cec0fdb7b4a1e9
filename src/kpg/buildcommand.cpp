// kpg build: a page source becomes a page.
#include <iostream>
#include <memory>

#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "kpg/commands.h"

namespace {

void printPlain(const std::string& source, const std::string& output) {
  const PlainSource plain = plainPageSource(source);
  refuseInput(output, plain.sources);
  writeFile(output.empty() ? "-" : output, plain.text.data(), plain.text.size());
}

}  // namespace

void addBuildCommand(CommandLine& line) {
  struct Options {
    std::string source, output;
    bool expand = false;
    PageSourceOptions page;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("build", "Compile a page source");
  command.add("source", options->source, "The page source, YAML").required().type("PAGE.yaml");
  command.add("-o,--out", options->output, "The page to write; - for the standard output").type("PAGE.kpg");
  command.flag("--strip", options->page.strip, "Leave out the names of scripts, by which an error says where it is");
  command.flag("--expand", options->expand, "Print the source without constants, templates and the like instead");
  command.runs([options] {
    if (options->expand) return printPlain(options->source, options->output);
    if (options->output.empty()) KpgCommand::refuse("--out is required");
    buildPage(
        options->source, options->output, [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; },
        options->page);
  });
}
