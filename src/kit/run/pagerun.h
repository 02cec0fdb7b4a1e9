// A page without a window: loaded from start-up on, driven as a user would, and looked at.
//
// The clock moves only when an action says so, so the same page and actions give the same log and the same pixels.
// Names in the page are found from its own folder, as in the previewer. A page source is compiled in memory.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/fileaccess.h"
#include "kit/errors.h"
#include "kit/run/containedthread.h"
#include "kit/run/madefiles.h"
#include "kit/run/pageaction.h"
#include "kit/run/rundesktop.h"
#include "kit/run/runlimits.h"
#include "kit/source/pagebuild.h"

struct PagePicture {
  int width, height;
  std::vector<uint32_t> pixels;  // 0x00RRGGBB, rows from the top
};

struct PageRunOptions : RunLimits {
  bool lines = false;            // tracebacks say where their code was written, as " at FILE:LINE"
  MadeFiles* files = nullptr;    // as for PageRun::use
  uintmax_t* written = nullptr;  // bytes that scripts have written, for runs that count together
};

// What a page, opened by that path, may open by name under these limits, beside what lies in its folder.
FileAccess accessOf(const std::string& page, const RunLimits& limits);

// Where a page, opened by that path, reads and writes files under these limits, for runContained(). Where sources are
// read along, which may lie anywhere, the writing alone has bounds.
ThreadFolders foldersOf(const std::string& page, const RunLimits& limits);
ThreadFolders foldersWithSources(const std::string& page, const RunLimits& limits);

class PageRun {
 public:
  explicit PageRun(const PageRunOptions& options);
  ~PageRun();

  // What makes the page and the files that it names; to be called before load(). It must outlive the run.
  void use(MadeFiles& files);

  // Loads the page, or compiles the page source (.yaml or .yml) and loads that, and draws it; false when it can't be
  // loaded, which the log explains. Throws KitError for a source with errors.
  bool load(const std::string& path, const KitWarn& warn = {});
  // The same for a source that has been compiled, for many runs of one page.
  bool load(const std::string& source, const BuiltPage& built);
  // Does nothing once the run has been ended.
  void act(const PageAction& action);

  const std::string& log() const { return desktop.log; }
  // What follows the page's name in a message about a run that has been ended; empty for any other.
  const std::string& stopped() const { return desktop.stopped(); }
  // Parts of the log: errors of scripts with their tracebacks, and what the system missed or refused.
  std::vector<std::string_view> complaints() const { return desktop.complaints(); }
  // Both with the places of code in tracebacks, where PageRunOptions::lines asks for them, and what is wrong with line
  // tables that were needed.
  std::string logWithPlaces() const { return desktop.withPlaces(log()); }
  std::vector<std::string> complaintsWithPlaces() const;
  // Why load() returned false: all that the system has complained of, or else that it hasn't.
  KitError refusal(const std::string& page) const;
  const std::vector<KitMessage>& lineWarnings() const { return places.warnings(); }
  // All files that were read so far, and with those that were not there; also after a load that threw.
  std::vector<std::string> inputs() const;
  std::vector<std::string> dependencies() const;

  // Where the objects of a page that was compiled for this run were written, by the page's full name; null for others.
  const PagePlaces* placesOf(const std::string& page) const;
  // All that was read for those pages.
  std::vector<std::string> sourcesRead() const { return files ? files->sources() : sources; }
  // Hangs an observer on the engine. The run owns it; what happens at the run's own end it doesn't hear.
  void watch(std::unique_ptr<EngineObserver> observer);

  // Follows the page's scripts from here on; to be called while none of them runs. The tracer must outlive the run.
  void trace(BobTracer& tracer);
  // Where code was written; null unless PageRunOptions::lines asks for it and it is known. What is returned stays.
  const BobCodeLines* linesOf(BobValue code);
  const CodePlaces& knownCode() const { return places.known(); }

  // For whoever looks at the page, or drives it in steps of his own.
  RunDesktop& player() { return desktop; }
  Engine& engine() { return desktop.shell.engine; }

  // Fonts that were read and that the player can't draw with, by the names that the page or a script gave.
  std::vector<std::string> unusableFonts();

  // What the window would show. The run is over then: the picture takes its pixels.
  PagePicture take();

 private:
  BuiltPage compile(const std::string& source, const KitWarn& warn);
  bool loadMade(const std::string& path, const KitWarn& warn);
  bool loadFile(const std::string& page);

  ScriptPlaces places;
  const bool lines;
  MadeFiles* files = nullptr;
  std::unique_ptr<EngineObserver> observer;
  RunDesktop desktop;
  std::vector<std::string> sources;
  std::map<std::string, PagePlaces> pagePlaces;  // by the pages' full names
};
