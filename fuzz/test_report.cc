// Results of page tests: what is read is written as it was read.
#include "kit/errors.h"
#include "kit/testing/testreport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    const TestReport report = reportFromJson("r.json", {reinterpret_cast<const char*>(data), size});
    const std::string text = reportAsJson(report);
    if (reportAsJson(reportFromJson("r.json", text)) != text) __builtin_trap();
    resultsAsJunit(report.results);
  } catch (const KitError&) {
  }
  return 0;
}
