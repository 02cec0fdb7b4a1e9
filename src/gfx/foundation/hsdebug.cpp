#include "gfx/foundation/hsdebug.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr int kAssertSize = 512;               // a longer text is cut
constexpr int kReportSize = kAssertSize + 16;  // and its ": value"

[[noreturn]] void LoopForEver() {
  // A volatile read each turn: a loop without any effect may be taken for one that ends.
  for (volatile bool forEver = true; forEver;) {
  }
  __builtin_unreachable();
}

hsHaltProc gHaltProc = LoopForEver;
char gReport[kReportSize] = "";

}  // namespace

hsHaltProc hsSetHaltProc(hsHaltProc proc) {
  const hsHaltProc before = gHaltProc;
  gHaltProc = proc ? proc : LoopForEver;
  return before;
}

void hsPrintStatus(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
  std::fflush(stdout);
}

const char* hsReportText() { return gReport; }

void hsHalt() {
  gReport[0] = '\0';
  gHaltProc();
}

void hsStatusMessage(const char* message, int32_t value) {
  std::snprintf(gReport, sizeof gReport, "%s: %ld", message, long{value});
  hsPrintStatus("%s\n", gReport);
}

void hsDebugMessage(const char* message, int32_t value) {
  hsStatusMessage(message, value);
  gHaltProc();
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
