#include "kit/project/runsteps.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "kit/onthreads.h"

namespace {

class Queue {
 public:
  Queue(const std::vector<BuildStep>& s, const std::function<void(size_t)>& r)
      : steps(s), run(r), states(s.size(), State::waiting) {}

  // Runs steps as long as there are any that nobody has begun, and none has thrown.
  void work() {
    std::unique_lock lock(mutex);
    while (begun < steps.size() && !thrown) {
      const auto next = nextReady();
      if (!next) {
        changed.wait(lock);
        continue;
      }
      states[*next] = State::running;
      ++begun;
      lock.unlock();
      std::exception_ptr caught;
      try {
        run(*next);
      } catch (...) {
        caught = std::current_exception();
      }
      lock.lock();
      if (caught) thrown = caught;
      states[*next] = State::done;
      changed.notify_all();
    }
  }

  // Once nobody works any more.
  void throwWhatWasThrown() const {
    if (thrown) std::rethrow_exception(thrown);
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
  std::exception_ptr thrown;
};

}  // namespace

void runSteps(const std::vector<BuildStep>& steps, size_t jobs, const std::function<void(size_t)>& run) {
  if (jobs == 0) jobs = std::max(1u, std::thread::hardware_concurrency());
  Queue queue(steps, run);
  runOnThreads(std::min(jobs, steps.size()), [&] { queue.work(); });
  queue.throwWhatWasThrown();
}
