// kpg build: a page source becomes a page.
#include <filesystem>
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/pagebuild.h"
#include "kpg/pagesource.h"
#include "kpg/pagewriter.h"

namespace fs = std::filesystem;

void buildPage(const std::string& source, const std::string& output,
               const std::function<void(const std::string&)>& warn) {
  const PageTree page = readPageSource(source, warn);
  std::vector<uint8_t> bytes;
  try {
    bytes = writePage(page);
  } catch (const std::length_error& e) {
    throw CommandError(source + ": " + e.what());
  }
  writeFile(output, bytes.data(), bytes.size());
  const fs::path folder = fs::path(output).parent_path();
  for (const ScriptFile& script : page.scriptFiles)
    writeFile((folder / script.name).string(), script.bytes.data(), script.bytes.size());
}

void addBuildCommand(CommandLine& line) {
  struct Options {
    std::string source, output;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("build", "Compile a page source");
  command.add("source", options->source, "The page source, YAML").required().type("PAGE.yaml");
  command.add("-o", options->output, "The page to write").required().type("PAGE.kpg");
  command.runs([options] {
    buildPage(options->source, options->output, [](const std::string& warning) { std::cerr << warning << "\n"; });
  });
}
