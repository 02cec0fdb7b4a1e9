// kpg: makes pages and pictures of them.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

#include "gfx/foundation/hsdebug.h"
#include "kit/version.h"
#include "kpg/commands.h"
#include "kpg/process.h"

namespace {

struct Command {
  std::string_view name;
  void (*add)(CommandLine& line);
};

// In the order in which help lists them.
// clang-format off
constexpr Command kCommands[] = {
    {"new", addNewCommand},
    {"build", addBuildCommand},
    {"clean", addCleanCommand},
    {"pack", addPackCommand},
    {"dump", addDumpCommand},
    {"tree", addTreeCommand},
    {"shot", addShotCommand},
    {"watch", addWatchCommand},
    {"studio", addStudioCommand},
    {"film", addFilmCommand},
    {"test", addTestCommand},
    {"check", addCheckCommand},
    {"diff", addDiffCommand},
    {"remote", addRemoteCommand},
    {"clut", addClutCommand},
    {"color", addColorCommand},
    {"font", addFontCommand},
    {"image", addImageCommand},
    {"run", addRunCommand},
    {"eval", addEvalCommand},
    {"compile", addCompileCommand},
    {"decode", addDecodeCommand},
    {"profile", addProfileCommand},
    {"dap", addDapCommand},
    {"format", addFormatCommand},
    {"schema", addSchemaCommand},
    {"lsp", addLspCommand},
    {"completion", addCompletionCommand},
};
// clang-format on

// The one that is called, since describing the options of all takes longer than some commands do; all of them for
// help, for a name that none has, and for the completion, which knows every option.
void addCommands(CommandLine& line, std::string_view called) {
  const auto command =
      std::find_if(std::begin(kCommands), std::end(kCommands), [&](const Command& c) { return c.name == called; });
  if (command != std::end(kCommands) && called != "completion") return command->add(line);
  for (const Command& each : kCommands) each.add(line);
}

// The exit status: what was printed has not got there before it has been flushed.
int finishStandardOutput(int status) {
  errno = 0;
  const bool flushed = std::fflush(stdout) == 0;
  if (flushed && !std::ferror(stdout)) return status;
  std::fprintf(stderr, "standard output: can't be written%s%s\n", errno ? ": " : "", errno ? std::strerror(errno) : "");
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  prepareStandardStreams();
  // A command must not hang. The report has been printed, but perhaps aside.
  hsSetHaltProc([] {
    if (*hsReportText()) std::fprintf(stderr, "%s\n", hsReportText());
    std::_Exit(2);
  });
  CommandLine line("kpg", kitVersion(), "Makes pages for the player's on-screen interface, and pictures of them.");
  const std::vector<std::string> words = programArguments(argc, argv);
  addCommands(line, words.empty() ? "" : words[0]);
  return finishStandardOutput(line.run(words));
}
