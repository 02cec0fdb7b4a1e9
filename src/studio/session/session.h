// A page in its author's hands: it runs, it is driven, and after each save it is opened anew with what was done so far.
//
// The page and what it names are made in memory: nothing has to be built first, and the author's folder stays as it is.
// Time is virtual: it passes only when somebody lets it pass. Each reload starts a new engine, since pictures, tables
// and fonts are read once in an engine's life.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"
#include "kit/run/recording.h"
#include "studio/session/keptstate.h"

struct SessionOptions : PageRunOptions {
  std::function<void(PageRun&)> prepare;  // called with each new run before it loads anything; may be empty
  // For texts that are being edited: what a source file is to hold in the place of what it does, or null.
  std::function<const std::string*(const std::string& path)> edited;
  double replaySeconds = 0.05;  // of processor time: a replay that takes longer is left, and the state set by name
};

class Session {
 public:
  // A page or a page source. Nothing is opened yet.
  explicit Session(std::string page, const SessionOptions& options = {});

  // Opens the page anew. False when it can't be: errors() says why, and the page that was there stays.
  bool restart();  // as for the first time
  bool reload();   // with what was pressed and typed since, and what came of it

  // Driving; nothing happens while no page is open.
  void act(const PageAction& action);
  void pass(uint32_t milliseconds);

  // Null before a page could be opened.
  PageRun* run() { return current.get(); }

  // How often a page has been opened well; another engine runs when it has grown.
  uint64_t openings() const { return timesOpened; }

  // What kept the page from being opened the last time; empty when it was.
  const std::vector<KitMessage>& errors() const { return problems; }
  const std::vector<KitMessage>& warnings() const { return remarks; }

  // Since the page was opened for the first time, or restarted.
  const Recording& recording() const { return done; }

  // The files that the page depends on, those that it misses among them; also after an error.
  std::vector<std::filesystem::path> dependencies() const;

 private:
  std::unique_ptr<PageRun> open();
  bool replay(PageRun& run) const;

  const std::string page;
  const SessionOptions options;
  LiveFiles files;
  uintmax_t written = 0;  // bytes, by scripts in all runs: a page that writes what it reads is opened again and again
  std::unique_ptr<PageRun> current;
  uint64_t timesOpened = 0;
  KeptState opened;  // right after the load
  Recording done;
  std::vector<KitMessage> problems, remarks;
  std::vector<std::filesystem::path> read;  // by the last attempt to open the page
};
