// kpg profile: counts what the scripts of a page do, function by function.
#include <filesystem>
#include <iostream>
#include <memory>

#include "bob/bob.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/profile/profilereport.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"
#include "kit/run/stdoutaside.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

struct ProfileOptions : PageRunOptions {
  std::string page, flameGraph, speedscope;
  std::vector<PageAction> actions;
};

void write(const std::string& file, const std::string& text, const std::vector<std::string>& inputs) {
  if (file.empty()) return;
  refuseClashes({file}, inputs);
  writeFile(file, text.data(), text.size());
}

struct Profile {
  std::string table, flameGraph, speedscope;
  std::vector<std::string> inputs;
};

Profile play(ProfileOptions options) {
  options.lines = true;
  // What a source needs is made in memory; a page is taken as it is.
  LiveFiles files(options.page);
  if (isPageSource(options.page)) {
    files.begin();
    options.files = &files;
  }
  BobProfiler profiler;
  PageRun run(options);
  run.trace(profiler);
  if (!run.load(options.page, [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; }))
    throw run.refusal(options.page);
  for (const PageAction& action : options.actions) run.act(action);
  for (const std::string& complaint : run.complaintsWithPlaces()) std::cerr << complaint;
  for (const KitMessage& error : files.errors()) std::cerr << error.whole() << "\n";
  if (!run.stopped().empty()) throw KitError(options.page, run.stopped());

  // Scripts of page sources are called by their places already.
  const ProfileName nameOf = [&](const BobProfileFunction& function) -> ProfiledName {
    const BobCodeLines* lines = run.knownCode().linesOf(function.hash);
    const std::string place = lines ? lines->file + ":" + std::to_string(lines->starts.front().line) : "";
    const bool isStatement = !lines || lines->arguments.empty(),
               isPlaced = function.name.find(':') != std::string::npos;
    if (isStatement && (isPlaced || function.name.empty()))
      return {isPlaced ? function.name : place.empty() ? "(statement)" : place, lines && lines->continuesLine};
    if (isPlaced) return {function.name + " function"};
    if (function.name.empty()) return {place + " function"};
    return {place.empty() ? function.name : function.name + " " + place};
  };
  const std::string title = std::filesystem::path(options.page).filename().string();
  return {profileTable(profiler, nameOf), profileFlameGraph(profiler, nameOf, title),
          profileSpeedscope(profiler, nameOf, title), run.inputs()};
}

void profile(const ProfileOptions& options) {
  refuseClashes({options.flameGraph, options.speedscope}, {options.page});
  StandardOutputAside aside;  // what the system prints is no part of the table
  Profile made;
  const bool readsSources = isPageSource(options.page);
  runContained(readsSources ? foldersWithSources(options.page, options) : foldersOf(options.page, options),
               [&] { made = play(options); });
  write(options.flameGraph, made.flameGraph, made.inputs);
  write(options.speedscope, made.speedscope, made.inputs);
  aside.print(made.table);
}

}  // namespace

void addProfileCommand(CommandLine& line) {
  auto options = std::make_shared<ProfileOptions>();
  KpgCommand command =
      line.command("profile", "Open a page, do the actions in order, print what each function of its scripts cost");
  command.add("page", options->page, "The page, or its source").required().type("PAGE.kpg|PAGE.yaml");
  command.add("--flame", options->flameGraph, "Where to write a flame graph").type("OUT.svg");
  command.add("--speedscope", options->speedscope, "Where to write a file for speedscope").type("OUT.json");
  addReadOnly(command, *options);
  addRunLimits(command, *options);
  addPageActions(command, [options](const PageAction& action) { options->actions.push_back(action); });
  command.runs([options] { profile(*options); });
}
