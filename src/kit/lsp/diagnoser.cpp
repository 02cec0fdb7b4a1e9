#include "kit/lsp/diagnoser.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kRest{60};

}  // namespace

Diagnoser::Diagnoser(Done d) : done(std::move(d)), thread([this] { work(); }) {}

Diagnoser::~Diagnoser() {
  {
    const std::lock_guard lock(mutex);
    ends = true;
  }
  changed.notify_one();
  thread.join();
}

void Diagnoser::add(const std::string& path, DiagnosisTask task) {
  const std::lock_guard lock(mutex);
  waiting[path] = {std::move(task), std::chrono::steady_clock::now() + kRest};
  changed.notify_one();
}

void Diagnoser::drop(const std::string& path) {
  const std::lock_guard lock(mutex);
  waiting.erase(path);
}

void Diagnoser::work() {
  std::unique_lock lock(mutex);
  while (true) {
    changed.wait(lock, [this] { return ends || !waiting.empty(); });
    if (ends) return;
    const auto first = std::min_element(waiting.begin(), waiting.end(),
                                        [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
    if (first->second.due > std::chrono::steady_clock::now()) {
      changed.wait_until(lock, std::chrono::steady_clock::time_point(first->second.due));
      continue;
    }
    const auto next = waiting.extract(first);
    lock.unlock();
    const DiagnosisTask& task = next.mapped().task;
    done(next.key(), task, diagnose(next.key(), task.kind, task.isSaved, readerOf(task.files)));
    lock.lock();
  }
}
