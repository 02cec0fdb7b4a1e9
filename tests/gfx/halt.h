// Two replacements of the library's halt for the length of a scope.
#pragma once

#include <string>
#include <vector>

#include "gfx/foundation/hsdebug.h"

struct Halted {
  std::string report;
};

// Throws Halted with the report: to see that a check fires.
class ThrowOnHalt {
 public:
  ThrowOnHalt() : before(hsSetHaltProc([] { throw Halted{hsReportText()}; })) {}
  ~ThrowOnHalt() { hsSetHaltProc(before); }

 private:
  hsHaltProc before;
};

// Notes the reports and returns: to walk the recovery after a check.
class ReturnOnHalt {
 public:
  ReturnOnHalt() : before(hsSetHaltProc([] { Reports().push_back(hsReportText()); })) { Reports().clear(); }
  ~ReturnOnHalt() { hsSetHaltProc(before); }

  static std::vector<std::string>& Reports() {
    static std::vector<std::string> reports;
    return reports;
  }

 private:
  hsHaltProc before;
};

// What call reports when its halt throws; "" when it reports nothing.
template <typename Call>
std::string ReportOf(Call&& call) {
  ThrowOnHalt halt;
  try {
    call();
  } catch (const Halted& halted) {
    return halted.report;
  }
  return "";
}

// The message of a failed hsAssert, without its place; "" when nothing is reported.
template <typename Call>
std::string AssertOf(Call&& call) {
  const std::string report = ReportOf(call), begin = "Assert Failed ";
  const size_t end = report.find(" :: Line:");
  if (report.rfind(begin, 0) != 0 || end == std::string::npos) return report.empty() ? "" : "no assert: " + report;
  return report.substr(begin.size(), end - begin.size());
}
