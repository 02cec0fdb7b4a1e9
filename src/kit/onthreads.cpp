#include "kit/onthreads.h"

#include <exception>
#include <thread>
#include <vector>

void runOnThreads(size_t threads, const std::function<void()>& work) {
  std::vector<std::thread> others;
  try {
    while (others.size() + 1 < threads) others.emplace_back([&] { work(); });
  } catch (const std::exception&) {
    // The machine has no more of them.
  }
  work();
  for (std::thread& other : others) other.join();
}
