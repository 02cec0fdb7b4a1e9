#include "kit/files.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "kit/errors.h"
#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
 protected:
  std::string at(const char* name) const { return (folder / name).string(); }
  static std::string read(const std::string& path) {
    const auto bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
  }
  size_t count() const { return size_t(std::distance(fs::directory_iterator(folder), {})); }

  const TemporaryFolder temporary;
  const fs::path& folder = temporary.path();
};

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

TEST_F(FilesTest, ErrorsNameTheFileAndLeaveNothing) {
  fs::create_directory(at("d"));
  const std::pair<std::string, std::string> cases[] = {{at("none/a"), ": can't be written: No such file or directory"},
                                                       {at("d"), ": can't be written: Is a directory"},
                                                       {"/dev/full", ": can't be written: No space left on device"}};
  for (const auto& [path, message] : cases) {
    try {
      writeFile(path, "x", 1);
      ADD_FAILURE() << path;
    } catch (const KitError& e) {
      EXPECT_EQ(e.what(), path + message);
      EXPECT_EQ(e.messages.at(0).file, path);
    }
  }
  EXPECT_EQ(count(), 1u);
  EXPECT_THROW(readFile(at("none")), KitError);
}

TEST_F(FilesTest, FilesThatBelongTogetherAreAllWrittenOrNone) {
  writeFile(at("a"), "before", 6);
  {
    OutputFiles files;
    files.add(at("a"), "after", 5);
    files.add(at("b"), "new", 3);
    EXPECT_THROW(files.add(at("none/c"), "x", 1), KitError);
  }
  EXPECT_EQ(read(at("a")), "before");
  EXPECT_EQ(count(), 1u);
  // A device fails late, when all others have been prepared.
  OutputFiles files;
  files.add(at("a"), "after", 5);
  files.add("/dev/full", "x", 1);
  EXPECT_THROW(files.finish(), KitError);
  EXPECT_EQ(read(at("a")), "before");
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

TEST_F(FilesTest, AReadOnlyFileIsNotReplaced) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may write everything";
  writeFile(at("a"), "before", 6);
  fs::permissions(at("a"), fs::perms(0444));
  EXPECT_THROW(writeFile(at("a"), "after", 5), KitError);
  EXPECT_EQ(read(at("a")), "before");
}

TEST_F(FilesTest, AnInputIsKnownUnderAnyName) {
  writeFile(at("a"), "x", 1);
  fs::create_symlink("a", at("link"));
  fs::create_hard_link(at("a"), at("other"));
  for (const char* name : {"a", "link", "other"}) EXPECT_THROW(refuseClashes({at(name)}, {at("a")}), KitError) << name;
  writeFile(at("b"), "x", 1);
  EXPECT_NO_THROW(refuseClashes({at("b"), at("c"), ""}, {at("a")}));
  EXPECT_NO_THROW(refuseClashes({at("none")}, {at("a"), at("none")}));
  EXPECT_NO_THROW(refuseClashes({"-", "/dev/null", "/dev/null"}, {at("a")}));
}

TEST_F(FilesTest, TwoOutputsAreTwoFiles) {
  writeFile(at("b"), "x", 1);
  fs::create_symlink("none", at("link"));
  const std::pair<std::string, std::string> cases[] = {
      {at("b"), at("b")}, {at("none"), at("./none")}, {at("none"), at("link")}, {"-", "/dev/stdout"}};
  for (const auto& [one, two] : cases) EXPECT_THROW(refuseClashes({one, two}, {}), KitError) << one;
}

}  // namespace
