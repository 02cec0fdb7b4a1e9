// String table files: every index that a file claims to have, and some that it can't.
#include "engine/scriptbindings/stringtable.h"

#include <algorithm>
#include <cstddef>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const StringTableFile file({data, data + size});
  const auto last = int32_t(std::min<size_t>(size / 12 + 2, 1000));
  size_t sum = 0;
  for (int32_t index = -1; index <= last; ++index)
    for (const char c : file.string(index)) sum += uint8_t(c);
  for (const int32_t index : {INT32_MIN, INT32_MAX}) sum += file.string(index).size();
  return sum == SIZE_MAX;  // the bytes must have been read
}
