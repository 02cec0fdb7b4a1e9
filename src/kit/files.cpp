#include "kit/files.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "kit/errors.h"

namespace fs = std::filesystem;

namespace {

bool writeInto(const std::string& path, const void* bytes, size_t size) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(static_cast<const char*>(bytes), std::streamsize(size));
  out.close();
  return bool(out);
}

// Where the bytes are to end up: a link goes on leading to its file.
fs::path resolved(const std::string& path) {
  std::error_code error;
  const fs::path target = fs::canonical(path, error);
  return error ? fs::path(path) : target;
}

}  // namespace

std::vector<uint8_t> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw KitError(path, std::strerror(errno));
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
  if (in.bad()) throw KitError(path, "can't be read");
  return bytes;
}

void writeFile(const std::string& path, const void* bytes, size_t size) {
  std::error_code error;
  const fs::file_status before = fs::status(path, error);
  if (fs::exists(before) && !fs::is_regular_file(before)) {
    if (!writeInto(path, bytes, size)) throw KitError(path, "can't be written");
    return;
  }
  // The process's number keeps two writers of one file apart.
  const fs::path target = resolved(path);
  const fs::path beside = target.string() + "." + std::to_string(getpid()) + ".part";
  if (!writeInto(beside.string(), bytes, size)) {
    fs::remove(beside, error);
    throw KitError(path, "can't be written");
  }
  if (fs::exists(before)) fs::permissions(beside, before.permissions(), error);
  fs::rename(beside, target, error);
  if (!error) return;
  fs::remove(beside, error);
  throw KitError(path, "can't be written");
}
