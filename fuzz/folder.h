// A temporary folder that becomes the current directory of a fuzz target, and files in it.
#pragma once

#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

// Enters the folder before the target's first input. False: it is the current directory already.
inline bool enterFolder() {
  static bool entered = false;
  if (entered) return false;
  std::string name = (std::filesystem::temp_directory_path() / "vistrel-fuzz-XXXXXX").string();
  std::filesystem::current_path(mkdtemp(name.data()));
  return entered = true;
}

inline void writeBytes(const char* name, const uint8_t* data, size_t size) {
  std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(data), std::streamsize(size));
}
