#include "kpg/pageactions.h"

#include <utility>

#include "host/keytable.h"
#include "kit/run/recording.h"

void addPageActions(KpgCommand& command, const std::shared_ptr<std::vector<PageAction>>& into) {
  const auto add = [&](const char* name, PageAction::Kind kind, const char* help, const char* type) {
    const auto take = [into, kind](const std::string& argument) { into->push_back({kind, argument}); };
    return command.each(name, take, help).type(type).group("Actions");
  };
  add("--key", PageAction::key,
      "Press Up Down Left Right Select Clear Backspace UpLeft UpRight DownLeft DownRight 0..9 or S", "NAME")
      .oneOf(keyNames(), "key");
  add("--wait", PageAction::wait, "Let MS milliseconds pass", "MS").between(0, kLongestWait);
  add("--eval", PageAction::eval, "Type TEXT at the console and press Enter", "TEXT");
  const auto play = [into](const std::string& file) {
    for (PageAction& action : readRecording(file).actions) into->push_back(std::move(action));
  };
  command.each("--play", play, "Do the steps of a recording").type("RECORDING.yaml").group("Actions");
}
