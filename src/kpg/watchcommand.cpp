// kpg watch: takes the picture of a page again whenever something that it is made of is saved.
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"
#include "kit/watch/filewatch.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

using Clock = std::chrono::steady_clock;

struct WatchOptions : PageRunOptions {
  std::string page, output, log;
  std::vector<PageAction> actions;
};

std::atomic<bool> isToEnd = false;

void endOn(int signal) {
  std::signal(signal, [](int) { isToEnd = true; });
}

class PageWatch {
 public:
  explicit PageWatch(WatchOptions o) : options(std::move(o)), files(options.page) {
    options.files = &files;
    options.lines = true;
  }

  void run() {
    constexpr std::chrono::milliseconds kBetweenLooks{200};  // whether somebody wants it to end
    while (!isToEnd) {
      const FileWatch::Time readSince = FileWatch::Time::clock::now();
      take();
      watch.watch(dependencies, readSince);
      while (!isToEnd && watch.wait(kBetweenLooks).empty()) {
      }
    }
  }

 private:
  void take() {
    const auto begun = Clock::now();
    try {
      savePicture();
      const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begun);
      std::cout << options.output << ": " << spent.count() << " ms" << std::endl;
    } catch (const KitError& e) {
      std::cout << e.what() << std::endl;  // the picture before stays
    }
  }

  void savePicture() {
    files.begin();
    PageRun page(options);
    const auto noteFiles = [&] {
      dependencies.clear();
      for (const std::string& file : page.dependencies()) dependencies.emplace_back(file);
    };
    try {
      const auto warn = [](const KitMessage& warning) { std::cout << warning.whole() << std::endl; };
      if (!page.load(options.page, warn)) throw page.refusal(options.page);
      for (const PageAction& action : options.actions) page.act(action);
    } catch (const KitError&) {
      noteFiles();
      throw;
    }
    noteFiles();
    for (const std::string& complaint : page.complaintsWithPlaces()) std::cout << complaint << std::flush;
    if (!page.stopped().empty()) throw KitError(options.page, page.stopped());
    refuseClashes({options.output, options.log}, page.inputs());
    const std::string log = page.logWithPlaces();
    if (!options.log.empty()) writeFile(options.log, log.data(), log.size());
    const PagePicture picture = page.take();
    writePng(options.output, picture.width, picture.height, picture.pixels);
  }

  WatchOptions options;
  LiveFiles files;
  FileWatch watch;
  std::vector<std::filesystem::path> dependencies;
};

void watchPage(const WatchOptions& options) {
  refuseClashes({options.output, options.log}, {options.page});
  if (!std::filesystem::is_regular_file(options.page)) throw KitError(options.page, "is not there");
  endOn(SIGINT);
  endOn(SIGTERM);
  PageWatch(options).run();
}

}  // namespace

void addWatchCommand(CommandLine& line) {
  auto options = std::make_shared<WatchOptions>();
  KpgCommand command = line.command("watch", "Do as shot does, again after each save, until Ctrl+C");
  command.add("page", options->page, "The page or its source; all that it names is made in memory")
      .required()
      .type("PAGE.kpg|PAGE.yaml");
  command.add("-o,--out", options->output, "The picture to write").required().type("OUT.png");
  command.add("--log", options->log, "Where to write what the console showed").type("FILE");
  command.flag("--read-only", options->readOnly, "Let no script write a file");
  addTimeLimit(command, options->limitSeconds);
  addPageActions(command, [options](const PageAction& action) { options->actions.push_back(action); });
  command.runs([options] { watchPage(*options); });
}
