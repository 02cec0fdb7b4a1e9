// Work that several threads share.
#pragma once

#include <cstddef>
#include <functional>

// Runs `work`, which must not throw, on this thread and on up to `threads` - 1 others at once; returns when all have
// ended. What the machine has no threads for, those that there are do.
void runOnThreads(size_t threads, const std::function<void()>& work);
