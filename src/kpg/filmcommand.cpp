// kpg film: opens a page without a window, does what a user would do, and saves all that the window would show.
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/film/filmfiles.h"
#include "kit/run/longtext.h"
#include "kit/run/preparedpages.h"
#include "kit/run/stdoutaside.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

namespace fs = std::filesystem;

struct FilmCommandOptions : PageRunOptions {
  std::string page, output;
  size_t pace = FilmOptions().pace, last = FilmOptions().last;
  std::vector<PageAction> actions;
};

void play(const FilmCommandOptions& options, const PreparedPages& pages, FilmSink& sink) {
  PageRun run(options);
  if (!pages.open(run, options.page)) throw run.refusal(options.page);
  refuseClashes({options.output}, run.inputs());
  Film film(run, sink, {uint32_t(options.pace), uint32_t(options.last)});
  for (const PageAction& action : options.actions) film.act(action);
  for (const std::string& complaint : run.complaintsWithPlaces()) std::cerr << cutInTheMiddle(complaint);
  if (!run.stopped().empty()) throw KitError(options.page, run.stopped());
  film.finish();
}

// Of a folder that is to be made, as far as it is there.
fs::path existingPartOf(fs::path folder) {
  for (folder = fs::absolute(folder); !fs::is_directory(folder); folder = folder.parent_path())
    ;
  return folder;
}

void playAside(const FilmCommandOptions& options, FilmSink& sink, const std::vector<fs::path>& alsoWritable = {}) {
  StandardOutputAside aside;
  PreparedPages pages([](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; });
  pages.prepare(options.page);
  ThreadFolders folders = foldersOf(pages.pathOf(options.page), options);
  folders.writable.insert(folders.writable.end(), alsoWritable.begin(), alsoWritable.end());
  runContained(folders, [&] { play(options, pages, sink); });
}

template <class Sink>
void playIntoFile(const FilmCommandOptions& options) {
  Sink sink;
  playAside(options, sink);
  writeFile(options.output, sink.bytes().data(), sink.bytes().size());
}

void film(const FilmCommandOptions& options) {
  const std::string kind = fs::path(options.output).extension().string();
  if (kind == ".gif") return playIntoFile<GifAnimation>(options);
  if (kind == ".png" || kind == ".apng" || isStandardOutput(options.output)) return playIntoFile<AnimatedPng>(options);
  if (!kind.empty()) KpgCommand::refuse("--out: a film is a .gif, an animated .png or a folder");
  FilmFolder sink(options.output);
  playAside(options, sink, {existingPartOf(options.output)});
}

}  // namespace

void addFilmCommand(CommandLine& line) {
  auto options = std::make_shared<FilmCommandOptions>();
  options->lines = true;
  KpgCommand command =
      line.command("film", "Open a page or a page source, do the actions in order, save all that the screen showed");
  command
      .add("page", options->page,
           "The page, or its source: a page of a project is built, any other is compiled in memory")
      .required()
      .type("PAGE.kpg|PAGE.yaml");
  command
      .add("-o,--out", options->output,
           "What to write: an animated GIF or PNG, or a folder for numbered pictures; - for a PNG on the standard "
           "output")
      .required()
      .type("OUT.gif|OUT.png|FOLDER");
  command.add("--pace", options->pace, "Stay so long on what a key or a line has done; 500 by default")
      .between(0, 60000)
      .type("MS");
  command.add("--last", options->last, "Stay so long on the last picture; 1000 by default")
      .between(0, 60000)
      .type("MS");
  addReadOnly(command, *options);
  addRunLimits(command, *options);
  addPageActions(command, [options](const PageAction& action) { options->actions.push_back(action); });
  command.runs([options] { film(*options); });
}
