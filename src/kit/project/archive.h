// Archives of files: zip, and tar compressed by gzip.
//
// The same files make the same bytes, whenever and wherever: there are no times and no owners in them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ArchivedFile {
  std::string name;  // with slashes; up to 255 bytes
  std::vector<uint8_t> bytes;
};

// Both in the order given. Throw KitError for names that are too long.
std::vector<uint8_t> zipArchive(const std::vector<ArchivedFile>& files);
std::vector<uint8_t> tarGzArchive(const std::vector<ArchivedFile>& files);

// Whether zipArchive made it, which puts a comment in.
bool isKitZip(const std::vector<uint8_t>& bytes);
