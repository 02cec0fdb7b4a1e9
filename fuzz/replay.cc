// Runs a fuzz target over the files of a corpus folder, as a plain test.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  if (argc != 2) return std::fprintf(stderr, "usage: %s CORPUS\n", argv[0]), 2;
  size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[1])) {
    if (!entry.is_regular_file()) continue;
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    ++count;
  }
  std::printf("%zu inputs\n", count);
  return count == 0;  // an empty corpus tests nothing
}
