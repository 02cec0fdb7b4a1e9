// Links, permissions, devices, pipes, and files that others have open: what POSIX systems make of them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>

#include "kit/errors.h"
#include "kit/filesfixture.h"
#include "kit/source/pagebuild.h"

namespace {

namespace fs = std::filesystem;

TEST_F(FilesTest, AReaderNeverSeesHalfAFile) {
  writeFile(at("a"), "before", 6);
  fs::permissions(at("a"), fs::perms(0640));
  std::ifstream reader(at("a"));
  writeFile(at("a"), "after", 5);
  std::string word;
  reader >> word;
  EXPECT_EQ(word, "before");  // who had it open goes on reading the old file
  EXPECT_EQ(read(at("a")), "after");
  EXPECT_EQ(fs::status(at("a")).permissions(), fs::perms(0640));
  EXPECT_EQ(count(), 1u);  // nothing is left beside it
}

TEST_F(FilesTest, ALinkGoesOnLeadingToItsFile) {
  writeFile(at("file"), "old", 3);
  fs::create_symlink("file", at("link"));
  writeFile(at("link"), "new", 3);
  EXPECT_TRUE(fs::is_symlink(at("link")));
  EXPECT_EQ(read(at("file")), "new");
}

TEST_F(FilesTest, ALinkToNothingMakesItsFile) {
  fs::create_directory(at("d"));
  fs::create_symlink("d/file", at("link"));
  writeFile(at("link"), "new", 3);
  EXPECT_TRUE(fs::is_symlink(at("link")));
  EXPECT_EQ(read(at("d/file")), "new");
}

TEST_F(FilesTest, APipeIsWrittenIntoAndStays) {
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  const int reader = open(at("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  writeFile(at("pipe"), "through", 7);
  char bytes[16];
  EXPECT_EQ(::read(reader, bytes, sizeof bytes), 7);
  close(reader);
  EXPECT_TRUE(fs::is_fifo(at("pipe")));
}

TEST_F(FilesTest, ALargeFileIsRefusedBeforeItIsRead) {
  writeFile(at("sparse"), "", 0);
  fs::resize_file(at("sparse"), uintmax_t{1} << 40);
  try {
    readFile(at("sparse"));
    ADD_FAILURE() << "it was read";
  } catch (const KitError& e) {
    EXPECT_EQ(e.what(), at("sparse") + ": is larger than 64 megabytes, and is not read");
  }
  fs::resize_file(at("sparse"), kLargestFile);
  EXPECT_EQ(readFile(at("sparse")).size(), kLargestFile);
}

TEST_F(FilesTest, ASourceTakesNothingFromAPipeOrADevice) {
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", at("zeros.bob"));
  const std::string page = "include: pipe\npage:\n  type: group\n  scripts: [zeros.bob]\n";
  writeFile(at("page.yaml"), page.data(), page.size());
  try {
    compilePage(at("page.yaml"));
    ADD_FAILURE();
  } catch (const KitError& e) {
    EXPECT_EQ(e.what(), at("page.yaml") + ":1: can't read 'pipe': is a pipe or a device, no file\n" + at("page.yaml") +
                            ":4: scripts of page: can't read 'zeros.bob': is a pipe or a device, no file");
  }
}

// Does it as somebody who may not write everything: the superuser in a process of their own, as nobody.
void asOrdinaryUser(const std::function<void()>& act) {
  if (geteuid() != 0) return act();
  constexpr unsigned kNobody = 65534;
  const pid_t child = fork();
  if (child == 0) {
    if (setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(2);
    act();
    std::fflush(stdout);
    _exit(testing::Test::HasFailure());
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(FilesTest, WhatIsReadOnlyStaysAsItIs) {
  fs::permissions(folder, fs::perms(0777));
  asOrdinaryUser([&] {
    fs::create_directory(at("d"));
    for (const char* name : {"a", "d/b"}) writeFile(at(name), "before", 6);
    fs::permissions(at("a"), fs::perms(0444));
    fs::permissions(at("d"), fs::perms(0555));
    for (const char* name : {"a", "d/b", "d/new"}) {
      try {
        OutputFiles files;
        files.add(at("fine"), "after", 5);
        files.add(at(name), "after", 5);
        files.finish();
        ADD_FAILURE() << name;
      } catch (const KitError& e) {
        EXPECT_EQ(e.what(), at(name) + ": can't be written: Permission denied");
      }
    }
    for (const char* name : {"a", "d/b"}) EXPECT_EQ(read(at(name)), "before");
    EXPECT_EQ(count(), 2u);
    fs::permissions(at("d"), fs::perms(0755));
    EXPECT_EQ(std::distance(fs::directory_iterator(at("d")), {}), 1);
  });
}

TEST_F(FilesTest, ADeviceFailsLateWhenAllOthersHaveBeenPrepared) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "this system has no device that is full";
  writeFile(at("a"), "before", 6);
  try {
    OutputFiles files;
    files.add(at("a"), "after", 5);
    files.add("/dev/full", "x", 1);
    files.finish();
    ADD_FAILURE();
  } catch (const KitError& e) {
    EXPECT_STREQ(e.what(), "/dev/full: can't be written: No space left on device");
    EXPECT_EQ(e.messages.at(0).file, "/dev/full");
  }
  EXPECT_EQ(read(at("a")), "before");
  EXPECT_EQ(count(), 1u);
}

TEST_F(FilesTest, ALinkIsItsFileAndADeviceTakesWhatComes) {
  writeFile(at("a"), "x", 1);
  fs::create_symlink("a", at("link"));
  fs::create_symlink("none", at("dangling"));
  EXPECT_THROW(refuseClashes({at("link")}, {at("a")}), KitError);
  EXPECT_THROW(refuseClashes({at("none"), at("dangling")}, {}), KitError);
  EXPECT_NO_THROW(refuseClashes({"-", "/dev/null", "/dev/null"}, {at("a")}));
}

}  // namespace
