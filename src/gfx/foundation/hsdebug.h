// How the 2D library reports a failure.
//
// A report stops the system on purpose: it is printed, flushed, and then the halt function runs, which never returns
// unless someone has replaced it by one that does. Code after a check must therefore be right for both: each check
// comes with the recovery that holds when the reporter returns.
#pragma once

#include <cstdint>

// Called after a report has been printed, on the thread that reported. The default loops for ever, so that the message
// is there to read and the place is there for a debugger to find.
using hsHaltProc = void (*)();

// Sets the halt function of the whole process, null for the default, and returns the one before. Any thread may call
// it.
hsHaltProc hsSetHaltProc(hsHaltProc proc);

// Prints on standard output and flushes it. All that the system itself says there goes through here.
[[gnu::format(printf, 1, 2)]] void hsPrintStatus(const char* format, ...);

// The text of the calling thread's latest report, for a halt function that shows it elsewhere too; "" before the first.
const char* hsReportText();

// Halts without a report of its own, for what has been reported elsewhere; hsReportText is "" then.
void hsHalt();

// Prints "message: value" as a line on standard output, flushes it and halts.
void hsDebugMessage(const char* message, int32_t value);

// Prints the same and returns: for what must be reported but must not stop its caller.
void hsStatusMessage(const char* message, int32_t value);

// Reports a failed check and, if the reporter returns, answers false.
bool hsAssertFunc(int line, const char* file, const char* message);

// A live check, in every build. Returns the condition, so that the recovery can follow it:
//   if (!hsAssert(index < fCount, "bad index")) return nullptr;
#define hsAssert(condition, message) ((condition) || hsAssertFunc(__LINE__, __FILE__, message))

// The one exception of the library, thrown by value after its report.
class hsException {
 public:
  enum Code : int32_t {
    kGeneric = 1,     // a failed condition, a bad verb
    kNilParam = 3,    // a pointer that must not be null
    kBadParam = 4,    // any other bad parameter, also an unknown bitmap configuration
    kFontEngine = 8,  // fParam is the font engine's own error code
  };

  explicit hsException(int32_t code, int32_t param = 0) : fErrorCode(code), fParam(param) {}

  int32_t fErrorCode;
  int32_t fParam;
};

// Each reports first and throws when the reporter returns; hsThrow reports "throw error" with the code.
[[noreturn]] void hsThrow(int32_t code, int32_t param = 0);
[[noreturn]] void hsThrowReported(const char* message, int32_t value, int32_t code);

inline void hsThrowIfFalse(bool condition) {
  if (!condition) hsThrowReported("throw if false", 0, hsException::kGeneric);
}
inline void hsThrowIfNilParam(const void* pointer) {
  if (!pointer) hsThrowReported("nil param", 0, hsException::kNilParam);
}
inline void hsThrowIfBadParam(bool bad) {
  if (bad) hsThrowReported("bad param", 0, hsException::kBadParam);
}
inline void hsThrowIfTrue(bool condition, int32_t code) {
  if (condition) hsThrowReported("throw if true", code, code);
}
