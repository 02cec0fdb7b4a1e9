#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "kit/watch/folderevents.h"

namespace {

class FolderPolling : public FolderEvents {
 public:
  void watch(const std::set<std::filesystem::path>&) override {}

  std::vector<FolderEvent> wait(std::chrono::milliseconds limit) override {
    constexpr std::chrono::milliseconds kBetweenLooks{20};
    std::unique_lock lock(mutex);
    wake.wait_for(lock, std::min(limit, kBetweenLooks), [&] { return interrupted; });
    interrupted = false;
    return {};
  }

  void interrupt() override {
    const std::lock_guard lock(mutex);
    interrupted = true;
    wake.notify_one();
  }

  bool tells() const override { return false; }

 private:
  std::mutex mutex;
  std::condition_variable wake;
  bool interrupted = false;
};

}  // namespace

std::unique_ptr<FolderEvents> openFolderPolling() { return std::make_unique<FolderPolling>(); }
