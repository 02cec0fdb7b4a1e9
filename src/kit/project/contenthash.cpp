#include "kit/project/contenthash.h"

#include <cstdio>
#include <filesystem>

#include "kit/errors.h"
#include "kit/files.h"

// FNV-1a of 64 bits, and the size.
std::string contentHash(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xCBF29CE484222325;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
  char text[48];
  std::snprintf(text, sizeof text, "%zx-%016llx", bytes.size(), static_cast<unsigned long long>(hash));
  return text;
}

std::string fileHash(const std::string& path) try { return contentHash(readFile(path)); } catch (const KitError&) {
  return "";
}

std::string hashIfThere(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) ? contentHash(readFile(path)) : "";
}
