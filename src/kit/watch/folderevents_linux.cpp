#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <utility>

#include "kit/watch/folderevents.h"

namespace {

namespace fs = std::filesystem;

class Descriptor {
 public:
  explicit Descriptor(int number) : number(number) {}
  ~Descriptor() {
    if (number >= 0) close(number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  operator int() const { return number; }

 private:
  const int number;
};

class Inotify : public FolderEvents {
 public:
  bool isOpen() const { return events >= 0 && wake >= 0; }

  // A folder that was removed and made again has a new number here, so all are asked for each time; for one that is
  // watched already the kernel answers with its number.
  void watch(const std::set<fs::path>& folders) override {
    std::map<int, fs::path> now;
    for (const fs::path& folder : folders) {
      constexpr uint32_t kChanges =
          IN_CREATE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_ATTRIB | IN_ONLYDIR;
      const int number = inotify_add_watch(events, folder.c_str(), kChanges);
      if (number >= 0) now[number] = folder;
    }
    for (const auto& [number, folder] : watched)
      if (!now.contains(number)) inotify_rm_watch(events, number);
    watched = std::move(now);
  }

  std::vector<FolderEvent> wait(std::chrono::milliseconds limit) override {
    std::array<pollfd, 2> ready{{{events, POLLIN, 0}, {wake, POLLIN, 0}}};
    poll(ready.data(), ready.size(), int(limit.count()));
    uint64_t count;
    if (read(wake, &count, sizeof count) < 0 && errno != EAGAIN) return {};
    return readEvents();
  }

  void interrupt() override {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t size = write(wake, &one, sizeof one);  // fails only when it is set already
  }

  bool tells() const override { return true; }

 private:
  std::vector<FolderEvent> readEvents() {
    std::vector<FolderEvent> all;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (ssize_t size; (size = read(events, buffer.data(), buffer.size())) > 0;)
      for (const char* at = buffer.data(); at < buffer.data() + size;) {
        inotify_event event;
        std::memcpy(&event, at, sizeof event);
        const auto folder = watched.find(event.wd);
        if (folder != watched.end() && event.len > 0)
          all.push_back({folder->second / (at + sizeof event), (event.mask & IN_MODIFY) != 0});
        at += sizeof event + event.len;
      }
    return all;
  }

  const Descriptor events{inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
  const Descriptor wake{eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)};
  std::map<int, fs::path> watched;  // folders by their numbers
};

}  // namespace

std::unique_ptr<FolderEvents> openFolderEvents() {
  auto inotify = std::make_unique<Inotify>();
  if (!inotify->isOpen()) return openFolderPolling();  // the desktop has no more of them
  return inotify;
}
