// kpg clut: makes colour tables.
#include <memory>

#include "kpg/commands.h"
#include "kpg/errors.h"
#include "kpg/files.h"
#include "kpg/standardclut.h"

namespace {

void writeClut(const std::string& path, const auto& colors) {
  std::vector<uint8_t> bytes = {0};
  for (uint32_t color : colors)
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(uint8_t(color >> shift));
  writeFile(path, bytes.data(), bytes.size());
}

}  // namespace

void addClutCommand(CLI::App& app) {
  struct Options {
    std::string output;
    bool standard = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("clut", "Make a colour table");
  command->add_flag("--standard", options->standard, "A table of 240 colours that suits any page")->required();
  command->add_option("-o", options->output, "The colour table to write")->required()->type_name("OUT.clut");
  command->callback([options] { writeClut(options->output, standardClut()); });
}
