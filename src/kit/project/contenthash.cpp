#include "kit/project/contenthash.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "kit/errors.h"
#include "kit/files.h"

namespace {

uint64_t stir(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15;
  return hash ^ hash >> 32;
}

}  // namespace

// A multiplication for every eight bytes, and the size.
std::string contentHash(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0, word = 0;
  size_t at = 0;
  for (; at + sizeof word <= bytes.size(); at += sizeof word) {
    std::memcpy(&word, bytes.data() + at, sizeof word);
    hash = stir(hash, word);
  }
  word = 0;
  if (at < bytes.size()) std::memcpy(&word, bytes.data() + at, bytes.size() - at);
  hash = stir(stir(hash, word), bytes.size());
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
