// An empty folder that lives as long as the object.
#pragma once

#include <filesystem>
#include <random>
#include <string>

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do
      where = std::filesystem::canonical(std::filesystem::temp_directory_path()) /
              ("vistrel-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(where));
  }
  ~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(where, error);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return where; }

 private:
  std::filesystem::path where;
};
