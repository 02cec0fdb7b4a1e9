#include "kit/files.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "kit/errors.h"
#include "platform/openfile.h"

namespace fs = std::filesystem;

namespace {

constexpr int kMaxLinks = 40;
constexpr uintmax_t kMostReserved = 1 << 30;  // bytes

std::error_code lastError() { return {errno, std::generic_category()}; }

[[noreturn]] void failWriting(const std::string& path, std::error_code error = lastError()) {
  throw KitError(isStandardOutput(path) ? "standard output" : path, "can't be written: " + error.message());
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

  // The number of bytes, 0 at the end; negative with errno set.
  ssize_t read(uint8_t* bytes, size_t size) {
    ssize_t count;
    do count = ::read(descriptor, bytes, size);
    while (count < 0 && errno == EINTR);
    return count;
  }

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

void drop(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
}

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
  Descriptor file(open ? dup(*open) : openDescriptor(path, O_WRONLY));
  if (!file.isOpen() || !file.write(bytes.data(), bytes.size()) || !file.close()) failWriting(path);
}

// Where the bytes are to end up: the end of a chain of links, which need not be there yet.
fs::path followLinks(const std::string& path) {
  fs::path at = path;
  std::error_code error;
  for (int i = 0; i < kMaxLinks && fs::is_symlink(at, error); ++i) at = at.parent_path() / fs::read_symlink(at, error);
  return at;
}

#ifdef _WIN32

// False with errno set.
bool mayWriteOver(const fs::path& file) { return _waccess(file.c_str(), W_OK) == 0; }

// The folder gives a new file its permissions.
bool takeOverPermissions(const Descriptor&, const fs::path&) { return true; }

std::error_code moveOver(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  return error;
}

// False with errno set.
bool addName(const fs::path& file, const fs::path& name) {
  std::error_code error;
  fs::create_hard_link(file, name, error);
  if (error) errno = error == std::errc::file_exists ? EEXIST : EIO;
  return !error;
}

#else

// False with errno set. A rename asks the folder alone.
bool mayWriteOver(const fs::path& file) { return faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0; }

// False with errno set. Only the superuser can give a file away; for anybody else it is now theirs.
bool takeOverPermissions(const Descriptor& file, const fs::path& old) {
  struct stat before;
  if (stat(old.c_str(), &before) != 0) return false;
  if (fchown(file.number(), before.st_uid, before.st_gid) != 0) errno = 0;
  return fchmod(file.number(), before.st_mode & 07777) == 0;
}

std::error_code moveOver(const fs::path& from, const fs::path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code() : lastError();
}

// False with errno set.
bool addName(const fs::path& file, const fs::path& name) { return ::link(file.c_str(), name.c_str()) == 0; }

#endif

// A new name in the folder of `target`, which `take` makes a file of: false with errno set when it can't. Empty when
// that isn't because the name is taken.
fs::path newNameBeside(const fs::path& target, const std::function<bool(const fs::path&)>& take) {
  for (int number = 0;; ++number) {
    // Short, since the name of the target may be as long as names can be.
    fs::path name =
        target.parent_path() / (".kpg-" + std::to_string(getpid()) + "-" + std::to_string(number) + ".part");
    if (take(name)) return name;
    if (errno != EEXIST) return {};
  }
}

// Writes a new file in the folder of `target`, with the permissions of the one that is to go, if there is one.
fs::path writeBeside(const std::string& path, const fs::path& target, bool exists, const void* bytes, size_t size) {
  int created = -1;
  const fs::path name = newNameBeside(target, [&](const fs::path& n) {
    created = openDescriptor(n, O_WRONLY | O_CREAT | O_EXCL);
    return created >= 0;
  });
  if (name.empty()) failWriting(path);
  Descriptor file(created);
  const bool good = file.write(static_cast<const char*>(bytes), size) &&
                    (!exists || takeOverPermissions(file, target)) && file.close();
  if (good) return name;
  const std::error_code error = lastError();
  file.close();
  drop(name);
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

// A pipe shows its size only as it is read.
std::vector<uint8_t> readUpTo(size_t most, const std::string& path) {
  const auto refuse = [&] {
    throw KitError(path, "is larger than " + std::to_string(most >> 20) + " megabytes, and is not read");
  };
  std::error_code error;
  if (fs::is_directory(path, error)) throw KitError(path, "is a folder; name a file in it");
  Descriptor file(openDescriptor(path, O_RDONLY));
  if (!file.isOpen()) throw KitError(path, lastError().message());
  constexpr size_t kBlock = 64 << 10;
  std::vector<uint8_t> bytes;
  const uintmax_t size = fs::file_size(path, error);
  if (!error && size > most) refuse();
  if (!error && size < kMostReserved) bytes.reserve(size_t(size) + kBlock);  // the end shows at the next block
  for (;;) {
    const size_t before = bytes.size();
    bytes.resize(before + kBlock);
    const ssize_t count = file.read(bytes.data() + before, kBlock);
    if (count < 0) throw KitError(path, "can't be read: " + lastError().message());
    bytes.resize(before + size_t(count));
    if (count == 0) return bytes;
    if (bytes.size() > most) refuse();
  }
}

}  // namespace

std::vector<uint8_t> readFile(const std::string& path) { return readUpTo(kLargestFile, path); }

std::vector<uint8_t> readFileOfAnySize(const std::string& path) { return readUpTo(SIZE_MAX, path); }

void refuseEndless(const std::string& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status))
    throw KitError(path, "is a pipe or a device, no file");
}

bool isStandardOutput(const std::string& path) { return openFileNamed(path) == STDOUT_FILENO; }

void writeFile(const std::string& path, const void* bytes, size_t size) {
  OutputFiles files;
  files.add(path, bytes, size);
  files.finish();
}

void appendToFile(const std::string& path, const void* bytes, size_t size) {
  Descriptor file(openDescriptor(path, O_WRONLY | O_CREAT | O_APPEND));
  if (!file.isOpen() || !file.write(static_cast<const char*>(bytes), size) || !file.close()) failWriting(path);
}

OutputFiles::~OutputFiles() {
  for (const Beside& file : beside) {
    drop(file.written);
    if (!file.old.empty()) drop(file.old);
  }
}

void OutputFiles::add(const std::string& path, const void* bytes, size_t size) {
  std::error_code error;
  const fs::file_status before = fs::status(path, error);
  const bool exists = fs::exists(before);
  if (fs::is_directory(before) && !openFileNamed(path))
    failWriting(path, std::make_error_code(std::errc::is_a_directory));
  if (openFileNamed(path) || (exists && !fs::is_regular_file(before))) {
    into.push_back({path, std::string(static_cast<const char*>(bytes), size)});
    return;
  }
  if (exists && !mayWriteOver(path)) failWriting(path);
  Beside file{path, followLinks(path), exists, {}, {}};
  beside.reserve(beside.size() + 1);  // first, so that nothing fails between the writing and the note of it
  file.written = writeBeside(path, file.target, exists, bytes, size);
  beside.push_back(std::move(file));
}

// What is written into comes first: it fails more often than a rename.
void OutputFiles::finish() {
  for (const Into& file : into) writeInto(file.path, file.bytes);
  into.clear();
  // All old files but that of the last rename get a second name, by which they come back if a later one fails.
  for (size_t i = 0; i + 1 < beside.size(); ++i)
    if (beside[i].exists)
      beside[i].old =
          newNameBeside(beside[i].target, [&](const fs::path& name) { return addName(beside[i].target, name); });
  for (size_t i = 0; i < beside.size(); ++i)
    if (const std::error_code error = moveOver(beside[i].written, beside[i].target)) failAt(i, error);
  for (const Beside& file : beside)
    if (!file.old.empty()) drop(file.old);
  beside.clear();
}

// After a rename that failed. Not every disk can give a file two names: without an old one to come back, a new one
// stays, and the error reports its path.
void OutputFiles::failAt(size_t failed, std::error_code error) {
  std::vector<const Beside*> staying;
  for (size_t i = failed; i-- > 0;) {
    const Beside& file = beside[i];
    if (!file.exists) {
      drop(file.target);
    } else if (file.old.empty() || moveOver(file.old, file.target)) {
      staying.push_back(&file);
    }
  }
  std::vector<KitMessage> messages{{beside[failed].path, 0, "can't be written: " + error.message()}};
  for (const Beside* file : staying) messages.push_back({file->path, 0, "was written before that, and stays"});
  throw KitError(std::move(messages));
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
  const std::vector<uint8_t> bytes = readFileOfAnySize(path);
  if (!bytes.empty() && !isOurs(bytes)) throw KitError(path, "is there and was not made by kpg; " + advice);
}
