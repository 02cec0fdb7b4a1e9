// String table files: numbered texts, kept apart from the pages that show them.
//
// The file is read whole and its texts are looked up in place. The count is little-endian, as the tool that wrote these
// files left it; lengths and offsets are big-endian.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

class StringTableFile {
 public:
  explicit StringTableFile(std::vector<uint8_t> b) : bytes(std::move(b)) {}

  // Null, with the reason logged, when the file can't be read.
  static std::unique_ptr<StringTableFile> open(const char* name);

  // The text of that index, from 1 to the count, cut at 80 bytes; empty when it isn't there or lies outside the file.
  std::string_view string(int32_t index) const;

 private:
  std::vector<uint8_t> bytes;
};
