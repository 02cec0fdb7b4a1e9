// A temporary folder that becomes the current directory of a fuzz target, and files in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "support/temporaryfolder.h"

// Enters the folder before the target's first input. False: it is the current directory already.
inline bool enterFolder() {
  static bool entered = false;
  if (entered) return false;
  static const TemporaryFolder& folder = *new TemporaryFolder;  // for as long as the target runs
  std::filesystem::current_path(folder.path());
  return entered = true;
}

inline void writeBytes(const char* name, const uint8_t* data, size_t size) {
  std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(data), std::streamsize(size));
}
