#include "kit/testing/walk.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <random>

#include "host/keytable.h"
#include "kit/run/longtext.h"

namespace {

constexpr size_t kMostTries = 400, kMostReplayedKeys = 200'000;
constexpr size_t kWindows = 8;                      // of a walk, over which memory is followed
constexpr size_t kFewestSamples = 40;               // on one page; fewer say nothing
constexpr size_t kRounds = 16, kLongestCycle = 64;  // of keys that are pressed again and again to find what grows

// What a page takes after each key, and whether it takes more and more.
class Growth {
 public:
  void sample(TestedPage& page) {
    Samples& samples = pages[pageShown(page)];
    const HeapView heap = page.heap();
    samples.heap.push_back(heap.usedBytes);
    samples.handles.push_back(heap.handles);
    samples.timers.push_back(inspectTimers(page.run.engine()).size());
  }

  std::optional<WalkFault> fault(size_t fewest) const {
    for (const auto& [page, samples] : pages) {
      if (samples.heap.size() < fewest) continue;
      for (const auto& [what, numbers] :
           {std::pair{"heap", &samples.heap}, std::pair{"number of objects with handles", &samples.handles},
            std::pair{"number of timers", &samples.timers}})
        if (const auto range = rise(*numbers))
          return WalkFault{WalkFault::growth,
                           std::string("the ") + what + " grows without end on " + page + ", from " +
                               std::to_string(range->first) + " to " + std::to_string(range->second),
                           std::string(what) + page};
    }
    return std::nullopt;
  }

 private:
  struct Samples {
    std::vector<uint64_t> heap, handles, timers;
  };

  static std::string pageShown(TestedPage& page) {
    const std::vector<FrameView> frames = inspectFrames(page.run.engine());
    if (frames.empty() || frames.front().page.empty()) return "no page";
    return std::filesystem::path(frames.front().page).filename().string();
  }

  // The least of each part of the time grows from each to the next.
  static std::optional<std::pair<uint64_t, uint64_t>> rise(const std::vector<uint64_t>& numbers) {
    std::vector<uint64_t> least;
    for (size_t i = 0; i < kWindows; ++i) {
      const auto begin = numbers.begin() + std::ptrdiff_t(numbers.size() * i / kWindows);
      const auto end = numbers.begin() + std::ptrdiff_t(numbers.size() * (i + 1) / kWindows);
      least.push_back(*std::min_element(begin, end));
      if (i > 0 && least[i] <= least[i - 1]) return std::nullopt;
    }
    return std::pair{least.front(), least.back()};
  }

  std::map<std::string, Samples> pages;
};

// Presses keys and looks after each.
class Walker {
 public:
  Walker(TestedPage& p, int64_t pauseAfter, bool isStrict)
      : page(p),
        pause{PageAction::wait, std::to_string(pauseAfter)},
        strict(isStrict),
        hadFocus(page.focus().has_value()) {
    page.newComplaints();
  }

  std::optional<WalkFault> press(const std::string& key) {
    page.act({PageAction::key, key});
    if (pause.argument != "0") page.act(pause);
    if (!page.run.stopped().empty()) return WalkFault{WalkFault::stopped, page.run.stopped(), "stopped"};
    const std::vector<std::string> complaints = page.newComplaints();
    if (strict && !complaints.empty()) return ofComplaint(complaints.front());
    const bool hasFocus = page.focus().has_value();
    if (hadFocus && !hasFocus) return WalkFault{WalkFault::lostFocus, "nothing has the focus any more", "focus"};
    hadFocus = hasFocus;
    return std::nullopt;
  }

 private:
  static WalkFault ofComplaint(const std::string& complaint) {
    std::string text = cutInTheMiddle(complaint);
    while (text.ends_with('\n')) text.pop_back();
    return {WalkFault::complaint, text, complaint};
  }

  TestedPage& page;
  const PageAction pause;
  const bool strict;
  bool hadFocus;
};

// Makes the keys of a failed walk fewer, each time on a new page.
class Shrinking {
 public:
  Shrinking(const WalkStep& s, bool isStrict, const WalkStart& makePage, const WalkFault& f)
      : step(s), strict(isStrict), start(makePage), fault(f) {}

  std::vector<std::string> fewest(std::vector<std::string> keys) {
    if (fault.kind == WalkFault::growth && keys.size() > kLongestCycle)
      keys.erase(keys.begin(), keys.end() - std::ptrdiff_t(kLongestCycle));
    const auto fails = [&](const std::vector<std::string>& some) { return !some.empty() && failsAgain(some); };
    if (!fails(keys)) return {};
    return plainest(fewestThatFail(keys, fails, kMostTries), fails);
  }

 private:
  // The same with straight keys in the place of diagonal ones, as far as these do as well.
  static std::vector<std::string> plainest(std::vector<std::string> keys,
                                           const std::function<bool(const std::vector<std::string>&)>& fails) {
    constexpr const char* kStraight[] = {"Up", "Down", "Left", "Right"};
    for (std::string& key : keys) {
      const std::string before = key;
      for (const char* straight : kStraight) {
        if (key != before || before == straight || before.find(straight) == std::string::npos) continue;
        key = straight;
        if (!fails(keys)) key = before;
      }
    }
    return keys;
  }

  bool failsAgain(const std::vector<std::string>& keys) {
    if (replayed > kMostReplayedKeys) return false;
    const std::unique_ptr<TestedPage> page = start();
    if (!page) return false;
    Walker walker(*page, step.pause, strict);
    if (fault.kind == WalkFault::growth) return growsAgain(*page, walker, keys);
    for (const std::string& key : keys) {
      ++replayed;
      if (const auto found = walker.press(key)) return found->kind == fault.kind && found->likeness == fault.likeness;
    }
    return false;
  }

  bool growsAgain(TestedPage& page, Walker& walker, const std::vector<std::string>& keys) {
    Growth growth;
    for (size_t round = 0; round < kRounds; ++round) {
      for (const std::string& key : keys) {
        ++replayed;
        if (walker.press(key)) return false;
      }
      growth.sample(page);
    }
    const auto found = growth.fault(kRounds);
    return found && found->likeness == fault.likeness;
  }

  const WalkStep& step;
  const bool strict;
  const WalkStart& start;
  const WalkFault& fault;
  size_t replayed = 0;  // keys
};

}  // namespace

std::optional<WalkFailure> walk(TestedPage& page, const WalkStep& step, uint32_t seed, bool strict,
                                const WalkStart& start) {
  const std::vector<std::string> names = step.among.empty() ? keyNames() : step.among;
  std::mt19937 random(seed);
  Walker walker(page, step.pause, strict);
  Growth growth;
  std::vector<std::string> keys;
  std::optional<WalkFault> fault;
  for (int64_t i = 0; i < step.keys && !fault; ++i) {
    keys.push_back(names[random() % names.size()]);
    fault = walker.press(keys.back());
    if (!fault) growth.sample(page);
  }
  if (!fault) fault = growth.fault(kFewestSamples);
  if (!fault) return std::nullopt;
  WalkFailure failure{*fault, std::move(keys), {}};
  // To run into the limit of time again and again takes too long.
  if (fault->kind != WalkFault::stopped) failure.fewest = Shrinking(step, strict, start, *fault).fewest(failure.keys);
  return failure;
}

// Delta debugging: leaves out parts, at first large ones, as long as what is left still fails.
std::vector<std::string> fewestThatFail(const std::vector<std::string>& all,
                                        const std::function<bool(const std::vector<std::string>&)>& fails,
                                        size_t tries) {
  std::vector<std::string> keys = all;
  for (size_t part = std::max<size_t>(keys.size() / 2, 1); tries > 0;) {
    bool shorter = false;
    for (size_t at = 0; at < keys.size() && keys.size() > 1 && tries > 0;) {
      std::vector<std::string> some(keys.begin(), keys.begin() + std::ptrdiff_t(at));
      some.insert(some.end(), keys.begin() + std::ptrdiff_t(std::min(at + part, keys.size())), keys.end());
      --tries;
      if (!some.empty() && fails(some)) {
        keys = std::move(some);
        shorter = true;
      } else {
        at += part;
      }
    }
    if (part == 1 && !shorter) break;
    part = std::max<size_t>(part / 2, 1);
  }
  return keys;
}

std::string keysText(const std::vector<std::string>& keys) {
  std::string out;
  for (size_t i = 0, next; i < keys.size(); i = next) {
    for (next = i + 1; next < keys.size() && keys[next] == keys[i];) ++next;
    out += (out.empty() ? "" : ", ") + keys[i] + (next - i > 1 ? " x " + std::to_string(next - i) : "");
  }
  return out;
}
