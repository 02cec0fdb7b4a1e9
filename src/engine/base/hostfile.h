// Files of the desktop, closed by whoever holds them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/host.h"

struct HostFileCloser {
  void operator()(HostFile* file) const { hostClose(file); }
};
using HostFilePtr = std::unique_ptr<HostFile, HostFileCloser>;

inline HostFilePtr openHostFile(const char* name) { return HostFilePtr(hostOpen(name)); }  // null: no such file

// The bytes of the file from here on. Nothing when it can't be read to its end or is larger than memory.
inline std::optional<std::vector<uint8_t>> readWhole(HostFile* file) try {
  std::vector<uint8_t> bytes(hostFileSize(file));
  if (hostRead(file, bytes.data(), bytes.size()) != bytes.size()) return std::nullopt;
  return bytes;
} catch (const std::exception&) {
  return std::nullopt;
}
