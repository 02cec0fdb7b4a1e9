// A folder with files to write.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "kit/files.h"
#include "support/temporaryfolder.h"

class FilesTest : public testing::Test {
 protected:
  std::string at(const char* name) const { return (folder / name).string(); }
  static std::string read(const std::string& path) {
    const auto bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
  }
  size_t count() const { return size_t(std::distance(std::filesystem::directory_iterator(folder), {})); }

  const TemporaryFolder temporary;
  const std::filesystem::path& folder = temporary.path();
};
