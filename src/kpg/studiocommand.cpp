// kpg studio: opens a page in the author's window, which is a program of its own.
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>

#include "kit/errors.h"
#include "kit/run/runlimits.h"
#include "kpg/commands.h"

namespace fs = std::filesystem;

namespace {

constexpr char kProgram[] = "vistrel-studio";

struct StudioOptions {
  std::string page, control, dap, files;
  bool dark = false, light = false;
};

void run(const fs::path& program, const StudioOptions& options) {
  std::vector<std::string> words = {program.string()};
  if (!options.control.empty()) words.insert(words.end(), {"--control", options.control});
  if (!options.dap.empty()) words.insert(words.end(), {"--dap", options.dap});
  if (!options.files.empty()) words.insert(words.end(), {"--files", options.files});
  if (options.dark) words.push_back("--dark");
  if (options.light) words.push_back("--light");
  words.insert(words.end(), {"--", options.page});
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
}

// The one that was installed, or built, with this program; then any on the PATH.
void openStudio(const StudioOptions& options) {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const fs::path& program : {here / kProgram, here / "../studio/window" / kProgram})
    if (!error && fs::is_regular_file(program)) run(program, options);
  run(kProgram, options);
  throw KitError(std::string(kProgram) +
                 (errno == ENOENT ? " is not there: it is built where Qt 6 is installed" : " can't be started"));
}

}  // namespace

void addStudioCommand(CommandLine& line) {
  auto options = std::make_shared<StudioOptions>();
  KpgCommand command = line.command("studio", "Open a page in the author's window");
  command.add("page", options->page, "The page or its source").required().type("PAGE.kpg|PAGE.yaml");
  command.add("--control", options->control, "Let kpg remote drive the page through a socket that is made there")
      .type("PATH");
  command.add("--dap", options->dap, "Let kpg dap --attach debug the page through a socket that is made there")
      .type("PATH");
  command.add("--files", options->files, kFileReachHelp)
      .type("page|all|none")
      .oneOf({kFileReachNames.begin(), kFileReachNames.end()}, "such choice");
  command.flag("--dark", options->dark, "Light on dark, whatever the desktop does");
  command.flag("--light", options->light, "Dark on light, whatever the desktop does");
  command.runs([options] { openStudio(*options); });
}
