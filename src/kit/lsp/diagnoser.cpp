#include "kit/lsp/diagnoser.h"

#include <utility>

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
  waiting[path] = std::move(task);
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
    const auto next = waiting.extract(waiting.begin());
    lock.unlock();
    const DiagnosisTask& task = next.mapped();
    done(next.key(), task, diagnose(next.key(), task.kind, task.isSaved, readerOf(task.files)));
    lock.lock();
  }
}
