// Runs work over and over, each time with another of its calls failing, and looks at what is left each time.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>

#include "faults/faults.h"

// Makes the fault (a class of faults.h) happen in `work`, which may throw std::bad_alloc; afterwards `works` says by
// assertions that all is well. Then the same with all calls failing from that one on. The ordinary test takes every
// `stride`-th call; the long one takes each. VISTREL_FAULT is the number of one to take alone, for looking into it.
template <class Fault, class Work, class Works>
void eachFails(uint64_t stride, Work work, Works works) {
#ifdef FAULTS_LONG
  stride = 1;
#endif
  const char* alone = std::getenv("VISTREL_FAULT");
  uint64_t calls = 0;
  for (const uint64_t many : {uint64_t{1}, UINT64_MAX}) {
    bool happened = true;
    for (uint64_t nth = alone ? std::strtoull(alone, nullptr, 10) : 0; happened; nth += stride) {
      SCOPED_TRACE("with call " + std::to_string(nth) + (many == 1 ? " failing" : " and all after it failing"));
      {
        const Fault fault(nth, many);
        try {
          work();
        } catch (const std::bad_alloc&) {
        }
        happened = fault.happened();
      }
      works();
      if (testing::Test::HasFatalFailure()) return;
      calls += happened;
      if (alone) break;
    }
  }
  EXPECT_GT(calls, 0u);
  testing::Test::RecordProperty("calls", std::to_string(calls));
}
