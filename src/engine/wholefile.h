// The bytes of an open file, for what is read in one go and kept.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/host.h"

// Closes the file. Nothing when it can't be read to its end or is larger than memory.
inline std::optional<std::vector<uint8_t>> readWhole(HostFile* file) {
  std::optional<std::vector<uint8_t>> bytes;
  try {
    bytes.emplace(hostFileSize(file));
    if (hostRead(file, bytes->data(), bytes->size()) != bytes->size()) bytes.reset();
  } catch (const std::exception&) {
    bytes.reset();
  }
  hostClose(file);
  return bytes;
}
