#include "kpg/pageactions.h"

#include "host/keytable.h"
#include "kit/run/recording.h"

namespace {

constexpr size_t kMostSteps = 4'000'000'000, kMostMegabytes = 1 << 20;

}  // namespace

void addSpaceLimits(KpgCommand& command, RunLimits& limits) {
  limits.limitMemory = kUsualMemory;
  command
      .each(
          "--files", [&limits](const std::string& name) { limits.reach = *fileReachNamed(name); }, kFileReachHelp)
      .type("page|all|none")
      .oneOf({kFileReachNames.begin(), kFileReachNames.end()}, "such choice");
  command
      .add("--max-memory", limits.limitMemory,
           "End a page for which the program needs more memory than this; 128 by default, 0 for as much as there is")
      .type("MB")
      .between(0, kMostMegabytes);
}

void addReadOnly(KpgCommand& command, RunLimits& limits) {
  command.flag("--read-only", limits.readOnly, "Let no script write a file");
}

void addRunLimits(KpgCommand& command, RunLimits& limits) {
  addSpaceLimits(command, limits);
  limits.limitSeconds = 10;
  command
      .add("--timeout", limits.limitSeconds,
           "End what runs for longer than this processor time after the load or an action; 10 by default, 0 for never")
      .type("SECONDS")
      .notNegative();
  command
      .add("--max-steps", limits.limitSteps,
           "End what makes more branches and calls of scripts than this after the load or an action")
      .type("N")
      .between(1, kMostSteps);
}

void addPageActions(KpgCommand& command, const std::function<void(const PageAction&)>& take) {
  const auto addAction = [&](const char* name, PageAction::Kind kind, const char* help, const char* type) {
    return command
        .each(
            name,
            [take, kind](const std::string& argument) {
              take({kind, argument});
            },
            help)
        .type(type)
        .group("Actions");
  };
  addAction("--key", PageAction::key,
            "Press Up Down Left Right Select Clear Backspace UpLeft UpRight DownLeft DownRight 0..9 or S", "NAME")
      .oneOf(keyNames(), "key");
  addAction("--wait", PageAction::wait, "Let MS milliseconds pass", "MS").between(0, kLongestWait);
  addAction("--eval", PageAction::eval, "Type TEXT at the console and press Enter", "TEXT");
  const auto play = [take](const std::string& file) {
    for (const PageAction& action : readRecording(file).actions) take(action);
  };
  command.each("--play", play, "Do the steps of a recording").type("RECORDING.yaml").group("Actions");
}
