// kpg shot: opens a page without a window, does what a user would do, and saves what the window would show.
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/run/explain.h"
#include "kit/run/longtext.h"
#include "kit/run/pagerun.h"
#include "kit/run/preparedpages.h"
#include "kit/run/stdoutaside.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagecut.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

namespace fs = std::filesystem;

struct ShotOptions : PageRunOptions {
  std::string page, output, log;
  bool strict = false;
  std::vector<PageAction> actions;
};

struct Shot {
  bool loaded = false;
  std::string log, stopped;
  std::vector<std::string> complaints, inputs, unusableFonts;
  PagePicture picture;
};

// What the system reports apart from its console. Nobody waits to hear how it manages its memory.
bool forward(const std::string& aside) {
  bool complained = false;
  for (const std::string& line : linesOf(aside)) {
    if (line == "deleting glyph cache" || line.starts_with("glyph cache exceeded ")) continue;
    std::cerr << line << "\n";
    complained = true;
  }
  return complained;
}

bool isCutShort(const std::string& page) try {
  return fs::file_size(page) <= kLargestFile && pageIsCutShort(readFile(page));
} catch (const std::exception&) {
  return false;  // the log will say what is wrong
}

Shot play(const ShotOptions& options, const PreparedPages& pages) {
  Shot shot;
  PageRun run(options);
  shot.loaded = pages.open(run, options.page);
  if (shot.loaded)
    for (const PageAction& action : options.actions) run.act(action);
  shot.log = run.logWithPlaces();
  shot.stopped = run.stopped();
  shot.inputs = run.inputs();
  for (const std::string& complaint : run.complaintsWithPlaces())
    shot.complaints.push_back(cutInTheMiddle(complaint, ", which --log has"));
  for (const KitMessage& warning : run.lineWarnings()) std::cerr << warning.whole() << "\n";
  shot.unusableFonts = run.unusableFonts();
  shot.picture = run.take();
  return shot;
}

Shot playAside(const ShotOptions& options, const PreparedPages& pages) {
  StandardOutputAside aside;
  Shot shot;
  runContained(foldersOf(pages.pathOf(options.page), options), [&] { shot = play(options, pages); });
  if (forward(aside.end())) shot.complaints.push_back("");  // which is on the error stream already
  return shot;
}

void checkOutputs(const ShotOptions& options, bool named) {
  refuseClashes({options.output, options.log}, {options.page});
  if (!named) refuseForeign(options.output, isKitPng, "say -o to write over it, or to use another name");
}

// All that the system has complained of, as far as it did.
std::string whyNotLoaded(const std::string& page, const Shot& shot) {
  std::string all;
  for (const std::string& complaint : shot.complaints) all += complaint;
  while (all.ends_with('\n')) all.pop_back();
  return all.empty() ? KitMessage{page, 0, "the player doesn't load it, and doesn't say why"}.whole() : all;
}

// The picture is saved even where the log can't be, as when whoever reads it has read enough.
void save(const ShotOptions& options, const Shot& shot) {
  std::string problem;
  if (!options.log.empty()) try {
      refuseClashes({options.log}, shot.inputs);
      writeFile(options.log, shot.log.data(), shot.log.size());
    } catch (const KitError& e) {
      problem = e.what();
    }
  if (!shot.stopped.empty()) std::cerr << options.page << ": " << shot.stopped << "\n";
  if (!shot.stopped.empty() || !shot.loaded) {
    if (!problem.empty()) std::cerr << problem << "\n";
    if (!shot.stopped.empty()) throw KitError("");
    throw KitError(whyNotLoaded(options.page, shot));
  }
  refuseClashes({options.output}, shot.inputs);
  writePng(options.output, shot.picture.width, shot.picture.height, shot.picture.pixels);
  if (!problem.empty()) throw KitError(problem);
}

void shoot(ShotOptions options) {
  const bool named = !options.output.empty();
  if (!named) options.output = fs::path(options.page).stem().string() + ".png";
  checkOutputs(options, named);
  if (fs::is_directory(options.page)) throw KitError(options.page, "is a folder; name a page in it");
  PreparedPages pages([](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; });
  pages.prepare(options.page);
  const bool cut = isCutShort(options.page);
  if (cut) std::cerr << KitMessage{options.page, 0, kPageIsCutShort}.whole() << "\n";
  const Shot shot = playAside(options, pages);
  const std::vector<KitMessage> explained = explainRun(pages.pathOf(options.page), shot.unusableFonts, shot.inputs);
  for (const KitMessage& message : explained) std::cerr << message.whole() << "\n";
  save(options, shot);
  if (options.strict || options.log.empty())
    for (const std::string& complaint : shot.complaints) std::cerr << complaint;
  if (!options.strict) return;
  if (cut || !explained.empty() || !shot.complaints.empty()) throw KitError("");
}

}  // namespace

void addShotCommand(CommandLine& line) {
  auto options = std::make_shared<ShotOptions>();
  KpgCommand command = line.command("shot", "Open a page or a page source, do the actions in order, save the screen");
  command
      .add("page", options->page,
           "The page, or its source: a page of a project is built, any other is compiled in memory")
      .required()
      .type("PAGE.kpg|PAGE.yaml");
  command
      .add("-o,--out", options->output,
           "The picture to write; - for the standard output; by default the page's name with .png, here")
      .type("OUT.png");
  command
      .add(
          "--log", options->log,
          "Where to write what the console showed; - for the standard output; by default only what is wrong is printed")
      .type("FILE");
  command.flag("--lines", options->lines,
               "Say where scripts were written, as FILE:LINE, after the lines of tracebacks in the log and in errors");
  addReadOnly(command, *options);
  command.flag("--strict", options->strict,
               "End with status 1 if a script failed, a file was missing or the system refused anything");
  addRunLimits(command, *options);

  addPageActions(command, [options](const PageAction& action) { options->actions.push_back(action); });
  command.runs([options] { shoot(*options); });
}
