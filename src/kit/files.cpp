#include "kit/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "kit/errors.h"

namespace fs = std::filesystem;

namespace {

constexpr int kMaxLinks = 40;

[[noreturn]] void failWriting(const std::string& path, int error) {
  throw KitError(isStandardOutput(path) ? "standard output" : path,
                 std::string("can't be written: ") + std::strerror(error));
}

// An open file of this process; closed at the latest with the object.
class Descriptor {
 public:
  explicit Descriptor(int d) : descriptor(d) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool isOpen() const { return descriptor >= 0; }
  int number() const { return descriptor; }
  bool close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0; }

  // False with errno set.
  bool write(const char* bytes, size_t size) {
    while (size > 0) {
      const ssize_t count = ::write(descriptor, bytes, size);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return false;
      bytes += count;
      size -= size_t(count);
    }
    return true;
  }

 private:
  int descriptor;
};

// The open file that a name means. To open /dev/stdout anew would begin a file again that a shell has redirected
// the output to.
std::optional<int> openFileNamed(std::string_view path) {
  if (path == "-" || path == "/dev/stdout") return STDOUT_FILENO;
  if (path == "/dev/stderr") return STDERR_FILENO;
  for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
    int number;
    if (!path.starts_with(folder)) continue;
    const char* const end = path.data() + path.size();
    const auto parsed = std::from_chars(path.data() + folder.size(), end, number);
    if (parsed.ec == std::errc() && parsed.ptr == end) return number;
  }
  return {};
}

void writeInto(const std::string& path, const std::string& bytes) {
  const std::optional<int> open = openFileNamed(path);
  std::fflush(stdout);
  Descriptor file(open ? dup(*open) : ::open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (!file.isOpen() || !file.write(bytes.data(), bytes.size()) || !file.close()) failWriting(path, errno);
}

// Where the bytes are to end up: the end of a chain of links, which need not be there yet.
fs::path followLinks(const std::string& path) {
  fs::path at = path;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(at, error); ++i) at = at.parent_path() / fs::read_symlink(at, error);
  return at;
}

// Writes a new file in the folder of `target`, with the permissions of the one that is to go.
std::string writeBeside(const std::string& path, const fs::path& target, const struct stat* before, const void* bytes,
                        size_t size) {
  // Short, since the name of the target may be as long as names can be.
  std::string name;
  int number = 0;
  const auto create = [&] {
    name = target.parent_path() / (".kpg-" + std::to_string(getpid()) + "-" + std::to_string(number++) + ".part");
    return open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  };
  int created = create();
  while (created < 0 && errno == EEXIST) created = create();
  Descriptor file(created);
  if (!file.isOpen()) failWriting(path, errno);
  bool good = file.write(static_cast<const char*>(bytes), size);
  if (good && before) {
    // Only the superuser can give a file away; for anybody else it is now theirs.
    if (fchown(file.number(), before->st_uid, before->st_gid) != 0) errno = 0;
    good = fchmod(file.number(), before->st_mode & 07777) == 0;
  }
  good = good && file.close();
  if (good) return name;
  const int error = errno;
  unlink(name.c_str());
  failWriting(path, error);
}

bool isSameRegularFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return !isStandardOutput(a) && fs::is_regular_file(b, error) && fs::equivalent(a, b, error);
}

// Neither file needs to be there yet. A device takes as many outputs as it is given.
bool isSameOutput(const std::string& a, const std::string& b) {
  if (isStandardOutput(a) || isStandardOutput(b)) return isStandardOutput(a) && isStandardOutput(b);
  std::error_code error;
  if (fs::exists(a, error) || fs::exists(b, error)) return isSameRegularFile(a, b);
  const auto place = [&](const std::string& path) {
    return fs::weakly_canonical(fs::absolute(followLinks(path), error), error);
  };
  return place(a) == place(b);
}

}  // namespace

std::vector<uint8_t> readFile(const std::string& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) throw KitError(path, "is a folder; name a file in it");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw KitError(path, std::strerror(errno));
  std::vector<uint8_t> bytes;
  for (constexpr size_t kBlock = 64 << 10; in;) {
    const size_t before = bytes.size();
    bytes.resize(before + kBlock);
    in.read(reinterpret_cast<char*>(bytes.data() + before), kBlock);
    bytes.resize(before + size_t(in.gcount()));
  }
  if (in.bad()) throw KitError(path, "can't be read");
  return bytes;
}

bool isStandardOutput(const std::string& path) { return openFileNamed(path) == STDOUT_FILENO; }

void writeFile(const std::string& path, const void* bytes, size_t size) {
  OutputFiles files;
  files.add(path, bytes, size);
  files.finish();
}

OutputFiles::~OutputFiles() {
  for (const Beside& file : beside) unlink(file.written.c_str());
}

void OutputFiles::add(const std::string& path, const void* bytes, size_t size) {
  struct stat before;
  const bool exists = stat(path.c_str(), &before) == 0;
  if (exists && S_ISDIR(before.st_mode) && !openFileNamed(path)) failWriting(path, EISDIR);
  if (openFileNamed(path) || (exists && !S_ISREG(before.st_mode))) {
    into.push_back({path, std::string(static_cast<const char*>(bytes), size)});
    return;
  }
  // A rename asks the folder alone.
  if (exists && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) failWriting(path, errno);
  const fs::path target = followLinks(path);
  beside.push_back({path, writeBeside(path, target, exists ? &before : nullptr, bytes, size), target.string()});
}

// What is written into comes first: it can fail where a rename can't.
void OutputFiles::finish() {
  for (const Into& file : into) writeInto(file.path, file.bytes);
  into.clear();
  while (!beside.empty()) {
    if (std::rename(beside.front().written.c_str(), beside.front().target.c_str()) != 0)
      failWriting(beside.front().path, errno);
    beside.erase(beside.begin());
  }
}

void refuseClashes(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs) {
  for (size_t i = 0; i < outputs.size(); ++i) {
    const std::string& output = outputs[i];
    if (output.empty()) continue;
    for (const std::string& input : inputs)
      if (isSameRegularFile(output, input))
        throw KitError(output, output == input
                                   ? "is an input, and would be written over"
                                   : "is the same file as the input '" + input + "', and would be written over");
    for (size_t k = 0; k < i; ++k)
      if (isSameOutput(output, outputs[k]))
        throw KitError((isStandardOutput(output) ? "the standard output" : "'" + output + "'") +
                       std::string(" can't take two outputs; give each a name of its own"));
  }
}

void refuseForeign(const std::string& path, bool (*isOurs)(const std::vector<uint8_t>& bytes),
                   const std::string& advice) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return;
  const std::vector<uint8_t> bytes = readFile(path);
  if (!bytes.empty() && !isOurs(bytes)) throw KitError(path, "is there and was not made by kpg; " + advice);
}
