#include "kpg/files.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "kpg/errors.h"

std::vector<uint8_t> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw CommandError(path + ": " + std::strerror(errno));
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
  if (in.bad()) throw CommandError(path + ": can't be read");
  return bytes;
}

void writeFile(const std::string& path, const void* bytes, size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(static_cast<const char*>(bytes), std::streamsize(size));
  out.close();
  if (!out) throw CommandError(path + ": can't be written");
}
