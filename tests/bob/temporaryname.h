// Files for scripts to read and write.
#pragma once

#include <filesystem>
#include <string>

// With slashes everywhere, since in a script's string a backslash begins something.
inline std::string TemporaryName(const char* name) {
  return (std::filesystem::temp_directory_path() / name).generic_string();
}
