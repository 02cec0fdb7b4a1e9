// kpg watch: takes the picture of a page again, or shows it in browsers anew, whenever something that it is made of is
// saved.
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/json.h"
#include "kit/pictures/png.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"
#include "kit/serve/pageserver.h"
#include "kit/watch/filewatch.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct WatchOptions : PageRunOptions {
  std::string page, output, log, viewer, server;
  std::vector<PageAction> actions;
  bool serve = false;
  size_t port = 0;
};

std::atomic<bool> isToEnd = false;

void endOn(int signal) {
  std::signal(signal, [](int) { isToEnd = true; });
}

class PageWatch {
 public:
  explicit PageWatch(WatchOptions o) : options(std::move(o)), files(options.page) {
    options.files = &files;
    options.written = &written;
    options.lines = true;
  }

  void run() {
    if (options.serve) {
      server = loadPageServer(options.server, options.viewer, [this](const fs::path& file) { return bytesOf(file); });
      if (!server->start(int(options.port)))
        throw KitError("port " + std::to_string(options.port) + " can't be listened on; another program may have it");
      std::cout << server->address() << std::endl;
    }
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
    messages.clear();
    opened.clear();
    try {
      play();
      const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begun);
      std::cout << (options.output.empty() ? options.page : options.output) << ": " << spent.count() << " ms"
                << std::endl;
    } catch (const KitError& e) {
      say(e.what());  // the picture before stays
    }
    if (server) server->tell(news());
  }

  void say(const std::string& message) {
    std::cout << message << (message.ends_with('\n') ? "" : "\n") << std::flush;
    messages.push_back(message);
  }

  // What the viewer's watch.js takes.
  std::string news() const {
    JsonWriter json(JsonForm::oneLine);
    json.beginObject();
    json.string("page", opened.empty() ? "" : server->placeOf(opened));
    json.beginArray("messages");
    for (const std::string& message : messages) json.string("", message);
    json.endArray();
    json.boolean("scriptsOpenFiles", options.reach != FileReach::none);
    json.endObject();
    return json.text();
  }

  // For browsers: what is made of the sources, or is there.
  std::optional<std::string> bytesOf(const fs::path& file) {
    const std::lock_guard lock(playing);
    if (const MadeFile* made = files.find(file)) return made->bytes;
    fs::path there = file;
    if (std::error_code error; !fs::is_regular_file(there, error)) {
      there = files.findIgnoringCase(file);
      if (there.empty()) return {};
      if (const MadeFile* made = files.find(there)) return made->bytes;
    }
    if (!mayRead(there)) return {};
    try {
      const std::vector<uint8_t> bytes = readFile(there.generic_string());
      return std::string(bytes.begin(), bytes.end());
    } catch (const KitError&) {
      return {};
    }
  }

  // What the page may read here, it may read in a browser.
  bool mayRead(const fs::path& file) const {
    return accessOf(options.page, options).mayRead(file, fs::absolute(options.page).parent_path());
  }

  // What the page has shown, to be written outside of what holds the page.
  struct Shown {
    std::string log;
    std::vector<std::string> inputs;
    std::optional<PagePicture> picture;
  };

  void play() {
    const std::lock_guard lock(playing);
    files.begin();
    Shown shown;
    runContained(foldersWithSources(options.page, options), [&] { shown = open(); });
    refuseClashes({options.output, options.log}, shown.inputs);
    if (!options.log.empty()) writeFile(options.log, shown.log.data(), shown.log.size());
    if (const auto& picture = shown.picture) writePng(options.output, picture->width, picture->height, picture->pixels);
  }

  // A page that reads what it writes opens itself again and again, so all that its scripts write counts as one run's.
  Shown open() {
    PageRun page(options);
    const auto noteFiles = [&] {
      dependencies.clear();
      for (const std::string& file : page.dependencies()) dependencies.emplace_back(file);
    };
    try {
      const auto warn = [this](const KitMessage& warning) { say(warning.whole()); };
      if (!page.load(options.page, warn)) throw page.refusal(options.page);
      for (const PageAction& action : options.actions) page.act(action);
    } catch (const KitError&) {
      noteFiles();
      throw;
    }
    noteFiles();
    opened = files.pageOf(options.page);
    for (const std::string& complaint : page.complaintsWithPlaces()) say(complaint);
    if (!page.stopped().empty()) throw KitError(options.page, page.stopped());
    Shown shown{page.logWithPlaces(), page.inputs(), {}};
    if (!options.output.empty()) shown.picture = page.take();
    return shown;
  }

  WatchOptions options;
  LiveFiles files;
  FileWatch watch;
  std::vector<fs::path> dependencies;
  std::vector<std::string> messages;   // of the last attempt
  fs::path opened;                     // the page as the player opens it; empty while it can't
  uintmax_t written = 0;               // bytes, by the page's scripts since the beginning
  std::mutex playing;                  // the files
  std::unique_ptr<PageServer> server;  // goes first, as it asks for the files
};

// The first of these that is there, seen from this program's folder; empty when none is.
std::string besideProgram(std::initializer_list<const char*> files) {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  for (const char* file : files)
    if (fs::is_regular_file(here / file, error)) return (here / file).generic_string();
  return "";
}

// Where the viewer is installed, or built, with this program.
std::string viewerBeside() {
  const fs::path player =
      besideProgram({"../share/vistrel/viewer/vistrel-player.wasm", "../../../web/viewer/vistrel-player.wasm"});
  return player.parent_path().generic_string();
}

void watchPage(WatchOptions options) {
  if (options.output.empty() && !options.serve) throw KitError("say where the picture goes (-o), or --serve");
  if (options.serve) options.server = besideProgram({"../lib/vistrel/modules/pageserver.so", "../kit/pageserver.so"});
  if (options.serve && options.viewer.empty()) options.viewer = viewerBeside();
  if (options.serve && !fs::is_regular_file(fs::path(options.viewer) / "watch.html"))
    throw KitError(options.viewer.empty() ? "the viewer isn't installed with kpg; say where it is (--viewer)"
                                          : options.viewer + ": the viewer isn't there");
  refuseClashes({options.output, options.log}, {options.page});
  if (!fs::is_regular_file(options.page)) throw KitError(options.page, "is not there");
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
  command.add("-o,--out", options->output, "The picture to write").type("OUT.png");
  command.flag("--serve", options->serve,
               "Show the page in browsers of this machine: open the address that is printed, and keys go to the page");
  command.add("--port", options->port, "The port to listen on; by default any that is free")
      .type("PORT")
      .between(1, 65535);
  command.add("--viewer", options->viewer, "Where the viewer is; by default where it is installed").type("FOLDER");
  command.add("--log", options->log, "Where to write what the console showed").type("FILE");
  addReadOnly(command, *options);
  addRunLimits(command, *options);
  addPageActions(command, [options](const PageAction& action) { options->actions.push_back(action); });
  command.runs([options] { watchPage(*options); });
}
