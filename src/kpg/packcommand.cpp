// kpg pack: the folder or archive that goes to the player.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>

#include "engine/images/imagecache.h"
#include "kit/files.h"
#include "kit/project/archive.h"
#include "kit/project/pack.h"
#include "kpg/commands.h"
#include "kpg/projectbuild.h"

namespace {

void printRow(uint64_t bytes, const std::string& what) {
  char number[32];
  std::snprintf(number, sizeof number, "%10llu  ", static_cast<unsigned long long>(bytes));
  std::cout << number << what << "\n";
}

void print(const Pack& pack, const std::string& output, size_t archiveSize) {
  uint64_t total = 0;
  std::cout << "\n     bytes  file\n";
  for (const PackedFile& file : pack.files) {
    printRow(file.size, file.name);
    total += file.size;
  }
  printRow(total, "in " + std::to_string(pack.files.size()) + " files");
  if (archiveSize > 0) printRow(archiveSize, "as " + output);
  std::cout << "\n    memory  of " << kImageCacheSize << " for the pictures that a page names\n";
  for (const PagePictures& page : pack.pages)
    printRow(page.memory,
             page.page + (page.memory > kImageCacheSize ? ": more than there is, so pictures are loaded again" : ""));
  if (pack.unused.empty()) return;
  std::cout << "\nLeft out, since nothing uses them; list them under keep: if a script does:\n";
  for (const std::string& file : pack.unused) std::cout << "  " << file << "\n";
}

}  // namespace

void addPackCommand(CommandLine& line) {
  struct Options {
    std::string project, output;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("pack", "Build a project, and make the folder or archive that goes to the player");
  addProjectFolder(command, options->project);
  command
      .add("-o,--out", options->output, "A folder, a .zip or a .tar.gz; by default a .zip of the project's name in it")
      .type("FOLDER|FILE");
  command.runs([options] {
    if (!options->output.empty()) checkPackName(options->output);
    const Project project = openProject(options->project);
    const BuildReport built = buildOnTerminal(project);
    const Pack pack = planPack(project, built);
    std::string output = options->output;
    if (output.empty()) {
      output = defaultPackName(project);
      refuseForeign(output, isKitZip, "say -o NAME.zip to pack into another file");
    }
    refuseClashes({output}, built.inputs);
    const size_t size = writePack(project, pack, output);
    print(pack, output, size);
  });
}
