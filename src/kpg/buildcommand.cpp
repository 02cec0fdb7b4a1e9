// kpg build: a page source becomes a page.
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/pagesource.h"
#include "kpg/pagewriter.h"

namespace {

void build(const std::string& source, const std::string& output) {
  const PageTree page = readPageSource(source, [](const std::string& warning) { std::cerr << warning << "\n"; });
  std::vector<uint8_t> bytes;
  try {
    bytes = writePage(page);
  } catch (const std::length_error& e) {
    throw CommandError(source + ": " + e.what());
  }
  writeFile(output, bytes.data(), bytes.size());
}

}  // namespace

void addBuildCommand(CLI::App& app) {
  struct Options {
    std::string source, output;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("build", "Compile a page source");
  command->add_option("source", options->source, "The page source, YAML")->required()->type_name("PAGE.yaml");
  command->add_option("-o", options->output, "The page to write")->required()->type_name("PAGE.kpg");
  command->callback([options] { build(options->source, options->output); });
}
