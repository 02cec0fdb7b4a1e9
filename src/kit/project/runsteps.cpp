#include "kit/project/runsteps.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace {

class Queue {
 public:
  Queue(const std::vector<BuildStep>& s, const std::function<void(size_t)>& r)
      : steps(s), run(r), states(s.size(), State::waiting) {}

  // Runs steps as long as there are any that nobody has begun.
  void work() {
    std::unique_lock lock(mutex);
    while (begun < steps.size()) {
      const auto next = nextReady();
      if (!next) {
        changed.wait(lock);
        continue;
      }
      states[*next] = State::running;
      ++begun;
      lock.unlock();
      run(*next);
      lock.lock();
      states[*next] = State::done;
      changed.notify_all();
    }
  }

 private:
  enum class State : uint8_t { waiting, running, done };

  std::optional<size_t> nextReady() const {
    const auto isDone = [&](size_t before) { return states[before] == State::done; };
    for (size_t i = 0; i < steps.size(); ++i)
      if (states[i] == State::waiting && std::all_of(steps[i].after.begin(), steps[i].after.end(), isDone)) return i;
    return std::nullopt;
  }

  const std::vector<BuildStep>& steps;
  const std::function<void(size_t)>& run;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<State> states;
  size_t begun = 0;
};

}  // namespace

void runSteps(const std::vector<BuildStep>& steps, size_t jobs, const std::function<void(size_t)>& run) {
  if (jobs == 0) jobs = std::max(1u, std::thread::hardware_concurrency());
  Queue queue(steps, run);
  std::vector<std::thread> threads;
  for (size_t i = 1; i < std::min(jobs, steps.size()); ++i) threads.emplace_back([&] { queue.work(); });
  queue.work();
  for (std::thread& thread : threads) thread.join();
}
