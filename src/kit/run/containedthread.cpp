#include "kit/run/containedthread.h"

#include <algorithm>
#include <future>

#include "platform/residentmemory.h"

#if defined(__linux__) && __has_include(<linux/landlock.h>)
#define HAS_LANDLOCK 1
#include <fcntl.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace fs = std::filesystem;

namespace {

#if HAS_LANDLOCK

// Names in folders stay readable: the player looks for files in whatever case, from the folder down in which a name
// begins.
constexpr uint64_t kReading = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr uint64_t kPlainWriting = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                   LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                   LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                   LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                   LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;

constexpr uint64_t kTruncating = 1 << 14;  // which older headers don't name
constexpr int kKnowsTruncating = 3;        // a version of Landlock

constexpr uint64_t kOfFiles = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | kTruncating;

class Descriptor {
 public:
  explicit Descriptor(long n) : number(int(n)) {}
  ~Descriptor() {
    if (number >= 0) close(number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  const int number;
};

void allow(const Descriptor& rules, const fs::path& path, uint64_t accesses) {
  const fs::path folder = path.empty() ? "." : path;
  const Descriptor place(open(folder.c_str(), O_PATH | O_CLOEXEC));
  if (place.number < 0) return;  // what isn't there needs no leave
  std::error_code ignored;
  landlock_path_beneath_attr beneath{};
  beneath.allowed_access = fs::is_directory(folder, ignored) ? accesses : accesses & kOfFiles;
  beneath.parent_fd = place.number;
  syscall(SYS_landlock_add_rule, rules.number, LANDLOCK_RULE_PATH_BENEATH, &beneath, 0);
}

void containThisThread(const ThreadFolders& folders) {
  landlock_ruleset_attr handled{};
  const uint64_t writing = kPlainWriting | (containmentVersion() >= kKnowsTruncating ? kTruncating : 0);
  handled.handled_access_fs = writing | (folders.readable ? kReading : 0);
  const Descriptor rules(syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
  if (rules.number < 0) return;
  if (folders.readable)
    for (const fs::path& folder : *folders.readable) allow(rules, folder, kReading);
  for (const fs::path& folder : folders.writable) allow(rules, folder, handled.handled_access_fs);
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0) syscall(SYS_landlock_restrict_self, rules.number, 0);
}

#else

void containThisThread(const ThreadFolders&) {}

#endif

}  // namespace

void runContained(const ThreadFolders& folders, const std::function<void()>& work) {
  residentMemory();  // which can't open what it reads in there
  std::async(std::launch::async, [&] {
    containThisThread(folders);
    work();
  }).get();
}

int containmentVersion() {
#if HAS_LANDLOCK
  return int(std::max(syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION), 0L));
#else
  return 0;
#endif
}
