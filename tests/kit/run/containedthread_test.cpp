#include "kit/run/containedthread.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;

bool canWrite(const fs::path& file) { return bool(std::ofstream(file) << "x"); }
bool canRead(const fs::path& file) { return bool(std::ifstream(file)); }
bool canCut(const fs::path& file) {
  std::error_code error;
  fs::resize_file(file, 0, error);
  return !error;
}
bool canList(const fs::path& folder) {
  std::error_code error;
  return fs::directory_iterator(folder, error) != fs::directory_iterator();
}

TEST(ContainedThreadTest, TheKernelKeepsAThreadToItsFolders) {
  if (containmentVersion() == 0) GTEST_SKIP() << "this kernel can't";
  const TemporaryFolder temporary;
  const fs::path& top = temporary.path();
  for (const char* name : {"readable", "writable", "outside"}) {
    fs::create_directory(top / name);
    ASSERT_TRUE(canWrite(top / name / "old"));
  }
  std::string seen;
  const auto look = [&] {
    seen.clear();
    for (const char* name : {"readable", "writable", "outside"}) {
      seen += canRead(top / name / "old") ? 'r' : '-';
      seen += canWrite(top / name / "old") ? 'w' : '-';
      seen += canWrite(top / name / "new") ? 'n' : '-';
      seen += canList(top / name) ? 'l' : '-';
    }
  };
  runContained({{{top / "readable", top / "nowhere"}}, {top / "writable"}}, look);
  EXPECT_EQ(seen, "r--lrwnl---l");
  runContained({std::nullopt, {top / "writable"}}, look);
  EXPECT_EQ(seen, "r--lrwnlr--l");
  look();  // this thread is as free as ever
  EXPECT_EQ(seen, "rwnlrwnlrwnl");
}

TEST(ContainedThreadTest, FilesOutsideAreNotCutEither) {
  if (containmentVersion() < 3) GTEST_SKIP() << "this kernel can't tell";
  const TemporaryFolder temporary;
  const fs::path outside = temporary.path() / "outside", folder = temporary.path() / "folder";
  fs::create_directory(folder);
  ASSERT_TRUE(canWrite(outside) && canWrite(folder / "inside"));
  runContained({std::nullopt, {folder}}, [&] {
    EXPECT_FALSE(canCut(outside));
    EXPECT_TRUE(canCut(folder / "inside"));
  });
  EXPECT_EQ(fs::file_size(outside), 1u);
}

TEST(ContainedThreadTest, WhatTheWorkThrowsArrives) {
  EXPECT_THROW(runContained({}, [] { throw std::runtime_error("it"); }), std::runtime_error);
}

}  // namespace
