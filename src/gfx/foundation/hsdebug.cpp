#include "gfx/foundation/hsdebug.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kAssertSize = 512;               // a longer text is cut
constexpr int kReportSize = kAssertSize + 16;  // and its ": value"

[[noreturn]] void LoopForEver() {
  // A volatile read in each iteration: the compiler may assume that a loop without any effect ends.
  for (volatile bool forEver = true; forEver;) {
  }
  __builtin_unreachable();
}

std::atomic<hsHaltProc> gHaltProc = LoopForEver;  // one for the process: a program says once how it stops
thread_local char tReport[kReportSize] = "";      // each thread's own, so that two reports never mix

}  // namespace

hsHaltProc hsSetHaltProc(hsHaltProc proc) { return gHaltProc.exchange(proc ? proc : LoopForEver); }

void hsPrintStatus(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
  std::fflush(stdout);
}

const char* hsReportText() { return tReport; }

void hsHalt() {
  tReport[0] = '\0';
  gHaltProc.load()();
}

void hsStatusMessage(const char* message, int32_t value) {
  std::snprintf(tReport, sizeof tReport, "%s: %ld", message, long{value});
  hsPrintStatus("%s\n", tReport);
}

void hsDebugMessage(const char* message, int32_t value) {
  hsStatusMessage(message, value);
  gHaltProc.load()();
}

bool hsAssertFunc(int line, const char* file, const char* message) {
  char text[kAssertSize];
  std::snprintf(text, sizeof text, "Assert Failed %s :: Line:%d  File:%s", message, line, file);
  hsDebugMessage(text, 0);
  return false;
}

void hsThrow(int32_t code, int32_t param) {
  hsDebugMessage("throw error", code);
  throw hsException(code, param);
}

void hsThrowReported(const char* message, int32_t value, int32_t code) {
  hsDebugMessage(message, value);
  throw hsException(code);
}
