#include "kit/lsp/diagnoser.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds kRest{60};

}  // namespace

Diagnoser::Diagnoser(Done d, Works works) : done(std::move(d)) {
  if (works == Works::onItsThread) thread = std::thread([this] { work(); });
}

Diagnoser::~Diagnoser() {
  {
    const std::lock_guard lock(mutex);
    ends = true;
  }
  changed.notify_one();
  if (thread.joinable()) thread.join();
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

// Diagnoses the first that is due, without the lock. Returns when the first is due where none is yet.
std::optional<std::chrono::steady_clock::time_point> Diagnoser::takeDue(std::unique_lock<std::mutex>& lock) {
  const auto first = std::min_element(waiting.begin(), waiting.end(),
                                      [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
  if (first->second.due > std::chrono::steady_clock::now()) return first->second.due;
  const auto next = waiting.extract(first);
  lock.unlock();
  const DiagnosisTask& task = next.mapped().task;
  done(next.key(), task, diagnose(next.key(), task.kind, task.isSaved, readerOf(task.files)));
  lock.lock();
  return {};
}

void Diagnoser::work() {
  std::unique_lock lock(mutex);
  while (true) {
    changed.wait(lock, [this] { return ends || !waiting.empty(); });
    if (ends) return;
    if (const auto due = takeDue(lock)) changed.wait_until(lock, *due);
  }
}

std::optional<std::chrono::milliseconds> Diagnoser::workNow() {
  std::unique_lock lock(mutex);
  while (!waiting.empty())
    if (const auto due = takeDue(lock))
      return std::chrono::ceil<std::chrono::milliseconds>(*due - std::chrono::steady_clock::now());
  return {};
}
