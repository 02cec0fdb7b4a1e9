// Engines side by side: eight of them, on two threads, show what each shows alone, to the byte; and engines that have
// ended leave no memory allocated.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/headless/headlessdesktop.h"
#include "support/allocations.h"

namespace {

struct Play {
  const char* page;
  std::vector<std::string> keys;  // pressed one after the other, over and over; a '>' line is typed at the console
};

const Play kPlays[] = {
    {"guide.kpg", {"Down", "Down", "Select", "Right", "Up", ">x = 1 + 2;", "Left"}},
    {"settings.kpg", {"Right", "Down", "Right", "Down", "Select", "Left", "1", "2", "Clear"}},
    {"tour.kpg", {"Down", "Select", "Down", "Up", ">topFrame.LoadPage(\"guide.kpg\");", "Down"}},
    {"panel.kpg", {"Select", "Right", "Left", "Down", "S"}},
    {"game.kpg", {"Left", "Right", "Select", "Up", "Down", "UpLeft", ">rand(1000);"}},
    {"gallery.kpg", {"Right", "Right", "Down", "Select", "Left"}},
    {"guide.kpg", {"Up", "Select", ">topFrame.UnloadPage();", ">topFrame.LoadPage(\"gallery.kpg\");", "Right"}},
    {"game.kpg", {"Down", "DownRight", "Select", ">frame.Nothing();", "Right"}},
};
constexpr int kRounds = 40;

// One engine with its desktop, driven a key at a time.
class Player {
 public:
  explicit Player(const Play& p) : play(p) {
    desktop.start();
    desktop.settle();
    loaded = desktop.shell.loadPage(std::string(DEMO_FOLDER "/") + play.page);
    desktop.settle();
  }

  void press(int round) {
    const std::string& key = play.keys[size_t(round) % play.keys.size()];
    if (key[0] == '>') {
      desktop.typeLine(key.substr(1));
    } else {
      desktop.key(key);
    }
    desktop.settle();
    desktop.wait(35);
  }

  bool loaded;
  HeadlessDesktop desktop;

 private:
  const Play& play;
};

// All that an engine has shown.
struct Outcome {
  std::string log;
  std::vector<uint32_t> window;
};

// Plays a page in every engine of the range at the same time, a key to each in rotation.
std::vector<Outcome> playTogether(size_t from, size_t to) {
  std::vector<std::unique_ptr<Player>> players;
  for (size_t i = from; i < to; ++i) players.push_back(std::make_unique<Player>(kPlays[i]));
  for (int round = 0; round < kRounds; ++round)
    for (const auto& player : players) player->press(round);
  std::vector<Outcome> outcomes;
  for (const auto& player : players) {
    EXPECT_TRUE(player->loaded) << player->desktop.log;
    outcomes.push_back({player->desktop.log, player->desktop.window()});
  }
  return outcomes;
}

TEST(ManyEngines, EightOnTwoThreadsShowWhatEachShowsAlone) {
  constexpr size_t kAll = std::size(kPlays), kHalf = kAll / 2;
  std::vector<Outcome> alone;
  for (size_t i = 0; i < kAll; ++i) alone.push_back(playTogether(i, i + 1)[0]);

  std::vector<Outcome> first, second;
  std::thread other([&] { second = playTogether(kHalf, kAll); });
  first = playTogether(0, kHalf);
  other.join();
  for (size_t i = 0; i < kAll; ++i) {
    const Outcome& together = i < kHalf ? first[i] : second[i - kHalf];
    EXPECT_EQ(together.log, alone[i].log) << kPlays[i].page;
    EXPECT_TRUE(together.window == alone[i].window) << kPlays[i].page << ", play " << i;
  }
}

TEST(ManyEngines, AThousandThatComeAndGoLeaveNothing) {
  // On a thread of their own: until it ends, the C library counts what a thread keeps to use again as allocated.
  const auto comeAndGo = [](int times) {
    std::thread([=] {
      for (int i = 0; i < times; ++i) {
        Player player(kPlays[size_t(i) % std::size(kPlays)]);
        ASSERT_TRUE(player.loaded);
        player.press(0);
      }
    }).join();
  };
  comeAndGo(8);  // what the first of all leaves for good: tables made once
  const int64_t before = allocatedBytes();
  comeAndGo(1000);
  EXPECT_LT(allocatedBytes() - before, 1000 * 8) << "less than the smallest thing that each could leave";
}

}  // namespace
