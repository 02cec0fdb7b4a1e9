// How the kit reports what is wrong with an author's files: places and sentences.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

struct KitMessage {
  std::string file;  // empty when no file is at fault
  int line = 0;      // from 1; 0 for the file as a whole
  std::string text;
  std::vector<KitMessage> uses{};  // what brought the place in, the nearest first: a template's use, an include
  std::string check{};             // the name of the check that finds it, of a warning that has one

  // "FILE:LINE: message", as far as the place is known, and a line for each use.
  std::string whole() const {
    std::string out = text;
    if (!file.empty()) out = (line > 0 ? file + ":" + std::to_string(line) : file) + ": " + text;
    for (const KitMessage& use : uses) out += "\n  " + use.whole();
    return out;
  }
};

// The last of a message's uses, where more are left out.
inline KitMessage moreUses(size_t count) {
  return {"", 0, "and in " + std::to_string(count) + (count == 1 ? " more use" : " more uses")};
}

// What every function of the kit throws; what() has the messages with their places, a line or more each, up to 50 of
// them and how many more there are.
struct KitError : std::runtime_error {
  explicit KitError(std::vector<KitMessage> all) : std::runtime_error(joined(all)), messages(std::move(all)) {}
  explicit KitError(const KitMessage& m) : KitError(std::vector{m}) {}
  explicit KitError(const std::string& text) : KitError(KitMessage{"", 0, text}) {}
  KitError(const std::string& file, const std::string& text) : KitError(KitMessage{file, 0, text}) {}
  KitError(const std::string& file, int line, const std::string& text) : KitError(KitMessage{file, line, text}) {}

  std::vector<KitMessage> messages;  // one at least

 private:
  static std::string joined(const std::vector<KitMessage>& all) {
    constexpr size_t kMostPrinted = 50;
    std::string out;
    for (size_t i = 0; i < all.size() && i < kMostPrinted; ++i) out += (i == 0 ? "" : "\n") + all[i].whole();
    if (all.size() > kMostPrinted) out += "\n... and " + std::to_string(all.size() - kMostPrinted) + " more";
    return out;
  }
};

// What a failed build throws. Whoever waits for the mended files has to watch these.
struct BuildError : KitError {
  BuildError(std::vector<KitMessage> all, std::vector<std::string> i)
      : KitError(std::move(all)), inputs(std::move(i)) {}

  std::vector<std::string> inputs;  // that were read or looked for until then, as they were opened
};

// Takes what is odd but no error. An empty one is not called.
using KitWarn = std::function<void(const KitMessage&)>;
