// Files of page tests: what is read has a text for each step.
#include "folder.h"
#include "kit/errors.h"
#include "kit/testing/testfile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  enterFolder();
  writeBytes("t.test.yaml", data, size);
  try {
    for (const PageTestCase& test : readTestFile("t.test.yaml").tests)
      for (const TestStep& step : test.steps)
        if (stepText(step).empty()) __builtin_trap();
  } catch (const KitError&) {
  }
  return 0;
}
