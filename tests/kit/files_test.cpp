#include "kit/files.h"

#include <gtest/gtest.h>

#include "kit/errors.h"
#include "kit/filesfixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(FilesTest, ErrorsNameTheFileAndLeaveNothing) {
  fs::create_directory(at("d"));
  const std::pair<std::string, std::string> cases[] = {{at("none/a"), ": can't be written: No such file or directory"},
                                                       {at("d"), ": can't be written: Is a directory"}};
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
  OutputFiles files;
  files.add(at("a"), "after", 5);
  files.add(at("b"), "new", 3);
  files.finish();
  EXPECT_EQ(read(at("a")), "after");
  EXPECT_EQ(read(at("b")), "new");
  EXPECT_EQ(count(), 2u);
}

TEST_F(FilesTest, AnInputIsKnownUnderAnyName) {
  writeFile(at("a"), "x", 1);
  fs::create_hard_link(at("a"), at("other"));
  for (const char* name : {"a", "other"}) EXPECT_THROW(refuseClashes({at(name)}, {at("a")}), KitError) << name;
  writeFile(at("b"), "x", 1);
  EXPECT_NO_THROW(refuseClashes({at("b"), at("c"), ""}, {at("a")}));
  EXPECT_NO_THROW(refuseClashes({at("none")}, {at("a"), at("none")}));
}

TEST_F(FilesTest, TwoOutputsAreTwoFiles) {
  writeFile(at("b"), "x", 1);
  const std::pair<std::string, std::string> cases[] = {
      {at("b"), at("b")}, {at("none"), at("./none")}, {"-", "/dev/stdout"}};
  for (const auto& [one, two] : cases) EXPECT_THROW(refuseClashes({one, two}, {}), KitError) << one;
}

}  // namespace
