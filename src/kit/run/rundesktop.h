// The headless desktop of a page run: it ends what runs for too long, and keeps what the system complained about.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "bob/bob.h"
#include "host/headless/headlessdesktop.h"
#include "kit/run/runlimits.h"
#include "kit/run/scriptplaces.h"

// Whether a message of the system, which it has written to the console itself, says that something is wrong. Everything
// does that is not one of the few by which it reports what it is doing.
bool isComplaint(std::string_view systemMessage);

class RunDesktop : public HeadlessDesktop {
 public:
  // Times are processor time of this thread. Without any limit a script can still be interrupted.
  explicit RunDesktop(const RunLimits& limits);
  ~RunDesktop();

  // After the engine has started: listens to its scripts. With `places` errors say where their code was written.
  void watchScripts(ScriptPlaces* places = nullptr);

  // Measures from here on. To be called when something begins that is to end by itself.
  void beginActivity();

  // Why what ran was ended, as what follows the page's name in a message; empty when nothing was.
  const std::string& stopped() const { return reason; }

  // Parts of the log, in order: errors of scripts with their tracebacks, and what the system refused.
  std::vector<std::string_view> complaints() const;

  // A part of the log with the places of code after the lines of tracebacks, which the system's own log doesn't have.
  std::string withPlaces(std::string_view partOfLog) const;

  // The files of the disk that were read, by their paths, and those that were not there.
  const std::set<std::filesystem::path>& filesRead() const { return read; }
  const std::set<std::filesystem::path>& filesMissing() const { return missing; }

  // Ends what runs, as the limit does; from any thread.
  void interrupt() { interrupted = true; }

  // Lets scripts run again after something was ended.
  void goOn();

  // Called now and then while something runs on and on, for whoever has windows to serve. Nothing that is called there
  // may use the engine, but to look at it.
  std::function<void()> whileBusy;

  // Makes a file that the player asks for by its full name, or returns null; may be empty.
  std::function<const std::string*(const std::filesystem::path&)> makeFile;

  bool breathe() override { return mayGoOn(nullptr); }
  void systemMessage(std::string_view text) override;
  const std::string* fileMade(const std::filesystem::path& path) override {
    return makeFile ? makeFile(path) : nullptr;
  }
  void fileOpened(const std::filesystem::path& path) override;
  void fileMissing(const std::filesystem::path& path) override { missing.insert(path); }

 private:
  struct Range {
    size_t begin, end;
  };

  struct Insertion {
    size_t at;  // in the log
    std::string text;
  };

  static RunDesktop& ofThisThread();
  bool mayGoOn(BobInterp* running);
  void stopAboveLimitOfMemory(BobInterp* running);
  void beginTurn(BobInterp* interp);
  void stop(const std::string& why, BobInterp* running);
  void stop(double count, const char* unit, BobInterp* running);
  void scriptFailed(BobInterp* interp, int code, const BobErrorArgument& argument);
  void reportWithPlaces(BobInterp* interp, int code, const BobErrorArgument& argument);

  const RunLimits limits;
  const size_t memoryBefore;     // bytes
  std::optional<double> begun;   // seconds of processor time; empty until somebody first asks
  size_t steps = 0;              // since then, those of the present turn included
  uint32_t stepsOfThisTurn = 0;  // which lasts until the script is looked at next
  std::string reason;
  std::vector<Range> complained;  // in the log
  ScriptPlaces* places = nullptr;
  std::vector<Insertion> inserted;  // by their positions
  size_t lastMessage = 0, lastMessageEnd = 0;
  std::set<std::filesystem::path> read, missing;
  std::atomic<bool> interrupted = false;
};
