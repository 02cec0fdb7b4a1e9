#include "bob/debug/debugger.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "bob/base/opcodes.h"
#include "bob/debug/evaluation.h"
#include "bob/debug/valueview.h"
#include "bob/heap/collector.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/heap/stack.h"
#include "bob/model/objects.h"
#include "bob/model/symbols.h"
#include "bob/model/vectors.h"
#include "bob/run/report.h"
#include "bob/tools/codehash.h"
#include "bob/tools/codeuses.h"

using namespace BobLayout;

namespace {

constexpr uint8_t kLineBegins = 1, kHasBreakpoint = 2, kIsFunctions = 4;

// Calls that are going on, those from the host included.
size_t depthOf(BobInterp* interp) {
  size_t depth = 0;
  for (const uint32_t* frame = interp->fp; frame < interp->stackTop; frame = interp->words(frame[kFramePrevious]))
    depth += bobFrameRecord(frame) != kBlockFrame;
  return depth;
}

// The function that a statement does nothing but store, as a definition does; nil for any other code.
BobValue storedFunction(BobInterp* interp, BobValue code) {
  const BobCodeUses all = bobCodeUses(interp, code);
  const bool calls = std::any_of(all.uses.begin(), all.uses.end(), [](const BobCodeUse& use) {
    return use.kind == BobCodeUse::call || use.kind == BobCodeUse::send;
  });
  if (calls || all.uses.empty() || all.functions.size() != 1) return kBobNil;
  const BobCodeUse& last = all.uses.back();
  const bool stores = last.kind == BobCodeUse::setGlobal || last.kind == BobCodeUse::setMember;
  if (!stores || last.value.kind != BobKnownValue::function) return kBobNil;
  const uint32_t* words = interp->words(code);
  for (uint32_t n = 0; n < bobCodeCount(words[kCodeCount]); ++n)
    if (interp->isA(words[kCodeElements + n], kBobCompiledCode)) return words[kCodeElements + n];
  return kBobNil;
}

// Holds the flag, and what the program goes on with, over whatever happens meanwhile.
class Standstill {
 public:
  Standstill(BobInterp* i, bool& f) : interp(i), flag(f), val(i->locals, i->val), argv(i->argv), argc(i->argc) {
    flag = true;
  }
  ~Standstill() {
    flag = false;
    interp->val = val;
    interp->argv = argv;
    interp->argc = argc;
  }
  Standstill(const Standstill&) = delete;
  Standstill& operator=(const Standstill&) = delete;

 private:
  BobInterp* interp;
  bool& flag;
  BobLocal val;
  uint32_t* argv;
  int argc;
};

}  // namespace

// ---- code and breakpoints

uint32_t BobDebugger::codeIsReady(BobInterp* i, BobValue value) {
  const auto [known, isNew] = numbers.try_emplace(bobCodeHash(i, value), uint32_t(codes.size()));
  if (isNew) codes.emplace_back();
  Code& code = codes[known->second];
  if (code.lines || !(code.lines = linesOf(i, value))) return known->second;
  code.marks.assign(std::max(code.lines->starts.back().offset, kBobFirstOffset) + 1, 0);
  for (const BobCodeLines::Start& start : code.lines->firstStarts()) code.marks[start.offset] = kLineBegins;
  leaveToFunction(i, value, &code);
  markBreakpoints(code);
  return known->second;
}

// Who asks for the line in which a function begins means what the function does there, if it does anything, and not
// that it is defined.
void BobDebugger::leaveToFunction(BobInterp* i, BobValue value, Code* code) {
  if (!code->lines->arguments.empty()) return;
  const BobValue function = storedFunction(i, value);
  const BobCodeLines* inner = function == kBobNil ? nullptr : linesOf(i, function);
  if (!inner || inner->file != code->lines->file) return;
  const int line = code->lines->starts.front().line;
  const auto isThere = [line](const BobCodeLines::Start& start) { return start.line == line; };
  const std::vector<BobCodeLines::Start> outside = code->lines->firstStarts(), inside = inner->firstStarts();
  const auto start = std::find_if(outside.begin(), outside.end(), isThere);
  if (start != outside.end() && std::any_of(inside.begin(), inside.end(), isThere))
    code->marks[start->offset] |= kIsFunctions;
}

void BobDebugger::markBreakpoints(Code& code) {
  if (!code.lines) return;
  const auto file = breakpoints.find(code.lines->file);
  for (uint32_t offset = 0; offset < code.marks.size(); ++offset) {
    uint8_t& mark = code.marks[offset];
    mark &= uint8_t(~kHasBreakpoint);
    if (!mark || mark & kIsFunctions || file == breakpoints.end()) continue;
    for (const Breakpoint& breakpoint : file->second)
      if (breakpoint.line == code.lines->lineAt(offset)) mark |= kHasBreakpoint;
  }
}

void BobDebugger::setBreakpoints(const std::string& file, std::vector<BobBreakpoint> all) {
  std::vector<Breakpoint>& here = breakpoints[file];
  here.clear();
  for (BobBreakpoint& breakpoint : all) here.push_back({std::move(breakpoint)});
  for (Code& code : codes) markBreakpoints(code);
}

// ---- while the program runs

void BobDebugger::atInstruction(BobInterp* i, uint32_t number, uint32_t offset) {
  if (isBusy) return;
  const Code& code = codes[number];
  const uint8_t mark = offset < code.marks.size() ? code.marks[offset] : 0;
  const bool isAsked = pausing.load(std::memory_order_relaxed);
  if (mode == BobResume::run && !isAsked && !(mark & kHasBreakpoint)) [[likely]]
    return;
  if (!code.lines) return;
  interp = i;
  if (mark & kHasBreakpoint && breaks(code, offset)) return stop({BobStop::breakpoint, ""});
  if (isAsked) return stop({BobStop::pause, ""});
  if (mode != BobResume::run && stepEnds(mark)) stop({BobStop::step, ""});
}

// A return to the caller ends a step wherever in its line that is; otherwise a line must begin.
bool BobDebugger::stepEnds(uint8_t mark) const {
  const size_t depth = depthOf(interp);
  if (depth < stepDepth) return true;
  if (!(mark & kLineBegins)) return false;
  return mode == BobResume::stepInto || (mode == BobResume::stepOver && depth == stepDepth);
}

// Whether the condition holds. One that fails is one that its author must see.
bool BobDebugger::holds(const std::string& condition) {
  if (condition.empty()) return true;
  const Standstill standstill(interp, isBusy);
  const BobCodeLines* lines = linesOf(interp, interp->code);
  bool isTrue = false;
  std::string error;
  if (bobTryAside(interp, &error, [&] { isTrue = bobEvaluateIn(interp, 0, lines, condition) != kBobFalse; }))
    return isTrue;
  if (logged) logged("condition '" + condition + "': " + error);
  return true;
}

// Whether a breakpoint of the line wants the program to stop.
bool BobDebugger::breaks(const Code& code, uint32_t offset) {
  const int line = code.lines->lineAt(offset);
  bool stops = false;
  for (Breakpoint& breakpoint : breakpoints[code.lines->file]) {
    if (breakpoint.line != line || !holds(breakpoint.condition)) continue;
    if (breakpoint.passed < breakpoint.passes)
      ++breakpoint.passed;
    else if (breakpoint.message.empty())
      stops = true;
    else if (logged)
      logged(expanded(breakpoint.message));
  }
  return stops;
}

std::string BobDebugger::expanded(const std::string& message) {
  const Standstill standstill(interp, isBusy);
  std::string text;
  for (size_t at = 0; at < message.size();) {
    const size_t open = message.find('{', at), close = message.find('}', open);
    if (close == std::string::npos) return text + message.substr(at);
    std::string error;
    const auto value = evaluate(0, message.substr(open + 1, close - open - 1), &error);
    text += message.substr(at, open - at) + (value ? value->text : "(" + error + ")");
    at = close + 1;
  }
  kept.clear();
  return text;
}

void BobDebugger::atError(BobInterp* i, int error, const BobErrorArgument& argument) {
  if (!stopsAtErrors || isBusy || !i->code || error == kBobRestart || error == kBobExit) return;
  interp = i;
  BobErrorArgument raised = argument;
  std::string text;
  {
    const Standstill standstill(interp, isBusy);
    bobTryAside(interp, &text, [&] {
      interp->errorHandler(interp, error, raised);
      throw BobUnwind{error};
    });
  }
  stop({BobStop::error, text});
}

void BobDebugger::stop(const BobStop& why) {
  pausing = false;
  mode = BobResume::run;
  if (!stopped) return;
  BobResume resume;
  {
    const Standstill standstill(interp, isBusy);
    resume = stopped(why);
    kept.clear();
  }
  mode = resume;
  stepDepth = depthOf(interp);
}

void BobDebugger::copyValues(BobInterp* i) {
  for (BobValue& value : kept) value = bobCopyValue(i, value);
}

// ---- while it stands

std::vector<BobFrameView> BobDebugger::frames() const {
  std::vector<BobFrameView> views;
  for (const BobRunningFrame& frame : bobRunningFrames(interp)) {
    const BobCodeLines* lines = linesOf(interp, frame.code);
    views.push_back({bobCodeText(interp, frame.code), lines ? lines->file : "", lines ? lines->lineAt(frame.offset) : 0,
                     frame.calledByHost});
  }
  return views;
}

BobVariableView BobDebugger::view(const std::string& name, BobValue value, const std::string& text) {
  kept.push_back(value);
  const size_t number = kept.size();
  BobVariableView shown{name, text.empty() ? bobValueText(interp, value) : text, bobTypeName(interp, kept[number - 1]),
                        bobMemberCount(interp, kept[number - 1]), 0};
  if (shown.members > 0) shown.number = number;
  return shown;
}

std::vector<BobVariableGroup> BobDebugger::variables(size_t number) {
  const std::vector<BobRunningFrame> running = bobRunningFrames(interp);
  if (number >= running.size()) return {};
  std::vector<BobVariableGroup> groups;
  const auto frame = [&] { return bobRunningFrames(interp)[number]; };  // its values may have moved
  if (const BobCodeLines* lines = linesOf(interp, running[number].code)) {
    uint32_t depth = 0;
    for (const BobVariables& variables : bobVisibleVariables(*lines, running[number].offset)) {
      constexpr BobVariableGroup::Kind kKinds[] = {BobVariableGroup::block, BobVariableGroup::arguments,
                                                   BobVariableGroup::around};
      BobVariableGroup group{kKinds[int(variables.of)], {}};
      for (size_t n = 0; n < variables.names.size(); ++n) {
        if (variables.names[n] == "_next") continue;
        if (const BobValue* place = bobVariableOf(interp, frame(), depth, uint32_t(n + 1)))
          group.variables.push_back(view(variables.names[n], *place));
      }
      ++depth;
      if (!group.variables.empty()) groups.push_back(std::move(group));
    }
  }
  BobVariableGroup globals{BobVariableGroup::globals, {}};
  for (BobValue scope = frame().scope; scope != kBobNil; scope = interp->words(kept.back())[kParent])
    globals.variables.push_back(view(scope == interp->rootScope.object ? "globals" : "scope", scope));
  groups.push_back(std::move(globals));
  return groups;
}

std::vector<BobVariableView> BobDebugger::members(size_t number, size_t first, size_t count) {
  if (number == 0 || number > kept.size()) return {};
  struct Member {
    std::string name, text;
    size_t number;
  };
  std::vector<Member> found;
  bobForEachMember(interp, kept[number - 1], first, count,
                   [&](const std::string& name, BobValue value, const std::string& text) {
                     kept.push_back(value);
                     found.push_back({name, text, kept.size()});
                   });
  std::vector<BobVariableView> views;
  for (const Member& member : found) views.push_back(view(member.name, kept[member.number - 1], member.text));
  return views;
}

std::optional<BobVariableView> BobDebugger::evaluate(size_t frame, const std::string& text, std::string* error) {
  const std::vector<BobRunningFrame> running = bobRunningFrames(interp);
  if (frame >= running.size()) return *error = "there is no such frame", std::nullopt;
  const BobCodeLines* lines = linesOf(interp, running[frame].code);
  BobLocal value(interp->locals, kBobNil);
  if (!bobTryAside(interp, error, [&] { value.value = bobEvaluateIn(interp, frame, lines, text); })) return {};
  return view(text, value);
}

std::optional<BobVariableView> BobDebugger::setMember(size_t number, const std::string& member, size_t frame,
                                                      const std::string& text, std::string* error) {
  if (number == 0 || number > kept.size()) return *error = "there is no such value", std::nullopt;
  const std::vector<BobRunningFrame> running = bobRunningFrames(interp);
  if (frame >= running.size()) return *error = "there is no such frame", std::nullopt;
  const BobCodeLines* lines = linesOf(interp, running[frame].code);
  const bool isElement = member.starts_with('[');
  int index = 0;
  if (isElement && (std::from_chars(member.data() + 1, member.data() + member.size(), index).ec != std::errc() ||
                    bobSmallValue(bobSmall(index)) != index))
    return *error = "there is no such element", std::nullopt;
  BobLocal value(interp->locals, kBobNil);
  bool isSet = false;
  const bool done = bobTryAside(interp, error, [&] {
    value.value = bobEvaluateIn(interp, frame, lines, text);
    const BobValue key = isElement ? bobSmall(index) : bobIntern(interp, member);
    isSet = bobSetProperty(interp, kept[number - 1], key, value);
  });
  if (done && isSet) return view(member, value);
  if (done) *error = "can't be set";
  return {};
}
