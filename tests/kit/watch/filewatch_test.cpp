#include "kit/watch/filewatch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <thread>

#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto kLong = 20s;     // for what comes: a wait ends when it does
constexpr auto kShort = 250ms;  // for what doesn't

void write(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

using Names = std::vector<std::string>;

// Both ways of hearing of changes keep the same promises.
class FileWatchTest : public testing::TestWithParam<bool> {
 protected:
  FileWatchTest() {
    write(page, "one");
    write(script, "one");
  }

  Names wait(std::chrono::milliseconds limit) {
    Names names;
    for (const fs::path& path : watch.wait(limit)) names.push_back(fs::relative(path, folder.path()).generic_string());
    return names;
  }

  TemporaryFolder folder;
  const fs::path page = folder.path() / "page.yaml", script = folder.path() / "tools.bob";
  FileWatch watch{GetParam() ? openFolderEvents() : openFolderPolling()};
};

INSTANTIATE_TEST_SUITE_P(Each, FileWatchTest, testing::Bool(),
                         [](const auto& test) { return test.param ? "Events" : "Polling"; });

TEST_P(FileWatchTest, EachWayOfSavingIsReportedOnceAndGoesOnBeing) {
  const fs::path beside = folder.path() / ".page.yaml.swp", before = folder.path() / "page.yaml~";
  const struct {
    const char* way;
    std::function<void()> save;
  } ways[] = {
      {"in place", [&] { write(page, "in place"); }},
      {"renamed over", [&] { write(beside, "renamed over"), fs::rename(beside, page); }},
      {"in place after that", [&] { write(page, "in place again"); }},
      {"deleted first", [&] { fs::remove(page), write(page, "deleted first"); }},
      {"old one moved away", [&] { fs::rename(page, before), write(page, "moved away"); }},
      {"in place at last", [&] { write(page, "the end"); }},
  };
  watch.watch({page, script});
  wait(kShort);  // they were written just now
  for (const auto& [way, save] : ways) {
    save();
    EXPECT_EQ(wait(kLong), Names{"page.yaml"}) << way;
    EXPECT_EQ(wait(kShort), Names{}) << way;
  }
}

TEST_P(FileWatchTest, ASaveUnderWayIsWaitedFor) {
  watch.watch({page, script});
  wait(kShort);
  std::thread editor([&] {
    std::ofstream out(page, std::ios::binary);  // empties the file
    std::this_thread::sleep_for(60ms);
    out << "whole";
  });
  EXPECT_EQ(wait(kLong), Names{"page.yaml"});
  std::string text;
  std::ifstream(page) >> text;
  EXPECT_EQ(text, "whole");
  editor.join();
  EXPECT_EQ(wait(kShort), Names{});
}

TEST_P(FileWatchTest, SavesTogetherComeTogether) {
  watch.watch({page, script});
  wait(kShort);
  write(script, "two");
  write(page, "two");
  EXPECT_EQ(wait(kLong), (Names{"page.yaml", "tools.bob"}));
  EXPECT_EQ(wait(kShort), Names{});
}

TEST_P(FileWatchTest, ASaveThatChangesNothingIsNone) {
  watch.watch({page});
  wait(kShort);
  write(page, "one");
  fs::last_write_time(page, fs::file_time_type::clock::now() + 1h);
  EXPECT_EQ(wait(kShort), Names{});
}

TEST_P(FileWatchTest, WhatDoesNotExistIsWaitedForWithItsFolders) {
  const fs::path picture = folder.path() / "art" / "logos" / "logo.png";
  watch.watch({picture});
  fs::create_directories(picture.parent_path());
  EXPECT_EQ(wait(kShort), Names{});
  write(picture, "pixels");
  EXPECT_EQ(wait(kLong), Names{"art/logos/logo.png"});
  fs::remove_all(folder.path() / "art");
  EXPECT_EQ(wait(kLong), Names{"art/logos/logo.png"});
  fs::create_directories(picture.parent_path());
  write(picture, "others");
  EXPECT_EQ(wait(kLong), Names{"art/logos/logo.png"});
}

// A page was read, then saved, and only then does the list of its files come.
TEST_P(FileWatchTest, ASaveBetweenReadingAndWatchingIsNotMissed) {
  const auto read = FileWatch::Time::clock::now();
  write(page, "two");
  fs::last_write_time(script, read - 1h);
  watch.watch({page, script}, read);
  EXPECT_EQ(wait(kLong), Names{"page.yaml"});

  write(page, "three");
  watch.watch({page});  // known already, so the new list makes no difference
  EXPECT_EQ(wait(kLong), Names{"page.yaml"});
}

TEST_P(FileWatchTest, AnInterruptEndsAWaitOrTheNextOne) {
  watch.watch({page});
  wait(kShort);
  watch.interrupt();
  EXPECT_EQ(wait(1h), Names{});
  std::thread other([&] {
    std::this_thread::sleep_for(30ms);
    watch.interrupt();
  });
  EXPECT_EQ(wait(1h), Names{});
  other.join();
}

}  // namespace
