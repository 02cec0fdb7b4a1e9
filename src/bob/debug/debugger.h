// A debugger: stops a program at lines, errors and steps, and shows it as it stands.
//
// It works on one interpreter, on the thread that runs it. While the program stands, `stopped` is being called, and
// time stands as well; the program goes on when that returns. What surprises: code is known only once it is about to
// run, so a breakpoint in a line without code never stops, and whoever takes it from a person must find a line that has
// some.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bob/debug/codelines.h"
#include "bob/heap/tracer.h"

struct BobBreakpoint {
  int line = 0;
  std::string condition;  // an expression: it stops where that is true; empty for always
  uint32_t passes = 0;    // how often it lets the program pass first
  std::string message;    // logs this in place of stopping, with {expression} replaced by its value; empty: stops
};

struct BobStop {
  enum Reason { breakpoint, step, pause, error };
  Reason reason;
  std::string text;  // of an error: its message
};

enum class BobResume { run, stepInto, stepOver, stepOut };

struct BobFrameView {
  std::string function;  // empty for what has no name
  std::string file;      // empty for code without lines
  int line = 0;
  bool calledByHost = false;
};

// A value while the program stands. `number` names it to members() and setMember(); 0 if it has no members.
struct BobVariableView {
  std::string name, text, type;
  size_t members = 0;
  size_t number = 0;
};

struct BobVariableGroup {
  enum Kind { block, arguments, around, globals };
  Kind kind;
  std::vector<BobVariableView> variables;
};

class BobDebugger final : public BobTracer {
 public:
  // Lines of code, or null if they aren't known; they stay where they are as long as the debugger lives.
  using LinesOf = std::function<const BobCodeLines*(BobInterp* interp, BobValue code)>;

  explicit BobDebugger(LinesOf linesOf) : linesOf(std::move(linesOf)) {}

  // -- what stops the program

  // All of a file, which is called as BobCodeLines does.
  void setBreakpoints(const std::string& file, std::vector<BobBreakpoint> breakpoints);
  void setStopsAtErrors(bool on) { stopsAtErrors = on; }
  void pause() { pausing = true; }  // as soon as code with lines runs; from any thread

  std::function<BobResume(const BobStop& stop)> stopped;
  std::function<void(const std::string& line)> logged;  // by breakpoints; may be empty

  // -- only while it stands. Frames by number, the innermost first.

  std::vector<BobFrameView> frames() const;
  std::vector<BobVariableGroup> variables(size_t frame);
  std::vector<BobVariableView> members(size_t number, size_t first, size_t count);
  // In a frame, variables by name. Without a result `error` says why.
  std::optional<BobVariableView> evaluate(size_t frame, const std::string& text, std::string* error);
  std::optional<BobVariableView> setMember(size_t number, const std::string& member, size_t frame,
                                           const std::string& text, std::string* error);

  // -- BobTracer
  uint32_t codeIsReady(BobInterp* interp, BobValue code) override;
  void atInstruction(BobInterp* interp, uint32_t code, uint32_t offset) override;
  void atError(BobInterp* interp, int error, const BobErrorArgument& argument) override;
  void copyValues(BobInterp* interp) override;

 private:
  struct Breakpoint : BobBreakpoint {
    uint32_t passed = 0;
  };
  struct Code {
    const BobCodeLines* lines = nullptr;
    std::vector<uint8_t> marks;  // by offset
  };

  void leaveToFunction(BobInterp* interp, BobValue value, Code* code);
  void markBreakpoints(Code& code);
  bool stepEnds(uint8_t mark) const;
  bool holds(const std::string& condition);
  bool breaks(const Code& code, uint32_t offset);
  std::string expanded(const std::string& message);
  void stop(const BobStop& why);
  BobVariableView view(const std::string& name, BobValue value, const std::string& text = {});

  const LinesOf linesOf;
  std::map<std::string, std::vector<Breakpoint>> breakpoints;  // by file
  std::vector<Code> codes;
  std::map<uint64_t, uint32_t> numbers;  // of codes, by hash
  BobInterp* interp = nullptr;           // that runs, or has run last
  BobResume mode = BobResume::run;
  size_t stepDepth = 0;  // frames when the step began
  bool stopsAtErrors = false;
  bool isBusy = false;  // stands, or evaluates
  std::atomic<bool> pausing = false;
  std::vector<BobValue> kept;  // while the program stands; number n is kept[n - 1]
};
