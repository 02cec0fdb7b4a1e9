#include "kit/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "kit/errors.h"

namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
 protected:
  FilesTest() {
    std::string name = (fs::temp_directory_path() / "vistrel-test-XXXXXX").string();
    folder = mkdtemp(name.data());
  }
  ~FilesTest() override { fs::remove_all(folder); }

  std::string at(const char* name) const { return (folder / name).string(); }
  static std::string read(const std::string& path) {
    const auto bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
  }
  size_t count() const { return size_t(std::distance(fs::directory_iterator(folder), {})); }

  fs::path folder;
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
  const std::pair<std::string, std::string> cases[] = {{at("none/a"), ": can't be written"},
                                                       {at("d"), ": can't be written"}};
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

}  // namespace
