#include "kit/run/containedthread.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "support/temporaryfolder.h"

namespace {

namespace fs = std::filesystem;

bool canWrite(const fs::path& file) { return bool(std::ofstream(file) << "x"); }
bool canRead(const fs::path& file) { return bool(std::ifstream(file)); }

TEST(ContainedThreadTest, TheKernelKeepsAThreadToItsFolders) {
  if (!canContainThreads()) GTEST_SKIP() << "this kernel can't";
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
    }
  };
  runContained({{{top / "readable", top / "nowhere"}}, {top / "writable"}}, look);
  EXPECT_EQ(seen, "r--rwn---");
  runContained({std::nullopt, {top / "writable"}}, look);
  EXPECT_EQ(seen, "r--rwnr--");
  look();  // this thread is as free as ever
  EXPECT_EQ(seen, "rwnrwnrwn");
}

TEST(ContainedThreadTest, WhatTheWorkThrowsArrives) {
  EXPECT_THROW(runContained({}, [] { throw std::runtime_error("it"); }), std::runtime_error);
}

}  // namespace
