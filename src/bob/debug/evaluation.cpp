#include "bob/debug/evaluation.h"

#include <algorithm>

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/heap/stack.h"
#include "bob/model/vectors.h"
#include "bob/run/calls.h"
#include "bob/run/frames.h"
#include "bob/run/invoke.h"
#include "bob/run/report.h"
#include "bob/run/source.h"

using namespace BobLayout;

namespace {

// In the place of the interpreter's error stream: the collector's reports go on to that, a message stays here.
class Aside : public BobStream {
 public:
  explicit Aside(BobStream* o) : outer(o) {}
  int PutC(int c) override { return message ? (*message += char(c), c) : outer->PutC(c); }
  void take(BobInterp* interp, int code, const BobErrorArgument& argument) {
    std::string text;
    message = &text;
    bobPrintError(interp, code, argument);
    message = nullptr;
    constexpr std::string_view kBegin = "Error: ";
    if (text.starts_with(kBegin)) text.erase(0, kBegin.size());
    while (text.ends_with('\n')) text.pop_back();
    error = text;
  }

  BobStream* outer;
  std::string* message = nullptr;
  std::string error;
};

void takeError(BobInterp* interp, int code, const BobErrorArgument& argument) {
  if (auto* aside = dynamic_cast<Aside*>(interp->stderrStream)) aside->take(interp, code, argument);
}

// What running anything changes in an interpreter, apart from what bobTry restores.
struct Registers {
  explicit Registers(BobInterp* i)
      : interp(i),
        val(i->locals, i->val),
        argv(i->argv),
        argc(i->argc),
        errorText(i->errorText),
        sourceLine(i->sourceLine) {}
  ~Registers() {
    interp->val = val;
    interp->argv = argv;
    interp->argc = argc;
    interp->errorText = errorText;
    interp->sourceLine = sourceLine;
  }

  BobInterp* interp;
  BobLocal val;
  uint32_t* argv;
  int argc;
  std::string errorText;
  int sourceLine;
};

struct Seen {
  std::string name;
  uint32_t depth, slot;
};

// What text in the frame can name: of variables of one name the innermost. Those of functions that can't be parameters
// again are left out.
std::vector<Seen> seenFrom(const BobCodeLines& lines, uint32_t offset) {
  std::vector<Seen> seen;
  uint32_t depth = 0;
  for (const BobVariables& variables : bobVisibleVariables(lines, offset)) {
    for (size_t n = 0; n < variables.names.size(); ++n) {
      const std::string& name = variables.names[n];
      const bool known = std::any_of(seen.begin(), seen.end(), [&](const Seen& s) { return s.name == name; });
      if (!known && name != "this" && name != "_next") seen.push_back({name, depth, uint32_t(n + 1)});
    }
    ++depth;
  }
  return seen;
}

// A function of the variables, which returns the result and then them.
std::string functionOf(const std::vector<Seen>& seen, std::string_view text, bool isExpression) {
  std::string names, result = "function(";
  for (const Seen& variable : seen) names += ", " + variable.name;
  result += names.empty() ? "" : names.substr(2);
  result += ") { local ";
  result += isExpression ? "_value = (" : "_value; ";
  result += text;
  return result + (isExpression ? "\n); " : "\n; ") + "return \\[_value" + names + "]; };";
}

// The scope that the frame runs in.
BobScope* scopeOf(BobInterp* interp, BobValue object) {
  for (BobScope* scope = interp->scopes; scope; scope = scope->next)
    if (scope->object == object) return scope;
  return &interp->rootScope;
}

BobValue compiled(BobScope* scope, const std::vector<Seen>& seen, std::string_view text) {
  std::string error;
  BobValue function = kBobNil;
  if (bobTryAside(scope->interp, &error, [&] { function = bobEvaluate(scope, functionOf(seen, text, true)); }))
    return function;
  return bobEvaluate(scope, functionOf(seen, text, false));
}

}  // namespace

bool bobTryAside(BobInterp* interp, std::string* error, const std::function<void()>& body) {
  const Registers registers(interp);
  Aside aside(interp->stderrStream);
  const BobErrorHandler handler = interp->errorHandler;
  interp->stderrStream = &aside;
  interp->errorHandler = takeError;
  const bool done = bobTry(interp, body);
  interp->stderrStream = aside.outer;
  interp->errorHandler = handler;
  if (!done) *error = aside.error;
  return done;
}

std::vector<BobVariables> bobVisibleVariables(const BobCodeLines& lines, uint32_t offset) {
  std::vector<BobVariables> visible;
  for (const BobCodeLines::Block& block : lines.blocks)
    if (block.begin <= offset && offset < block.end)
      visible.insert(visible.begin(), {BobVariablesOf::block, block.names});
  visible.push_back({BobVariablesOf::function, lines.arguments});
  for (const std::vector<std::string>& names : lines.around) visible.push_back({BobVariablesOf::around, names});
  return visible;
}

BobValue* bobVariableOf(BobInterp* interp, const BobRunningFrame& frame, uint32_t depth, uint32_t slot) {
  BobValue env = frame.env;
  for (; depth > 0; --depth) {
    env = bobFollowMovedEnvironment(interp, interp->words(env)[kEnvNext]);
    if (env == kBobNil) return nullptr;
  }
  const uint32_t count = interp->words(env)[kEnvCount];
  return slot + 2 > count ? nullptr : bobTopOfVariables(interp, env) - slot;
}

BobValue bobEvaluateIn(BobInterp* interp, size_t number, const BobCodeLines* lines, std::string_view text) {
  const BobRunningFrame frame = bobRunningFrames(interp).at(number);
  const std::vector<Seen> seen = lines ? seenFrom(*lines, frame.offset) : std::vector<Seen>();
  BobScope* scope = scopeOf(interp, frame.scope);
  const BobLocal function(interp->locals, compiled(scope, seen, text));

  const auto frameNow = [&] { return bobRunningFrames(interp).at(number); };  // its values may have moved
  const auto read = [&](const BobRunningFrame& now, const Seen& variable) {
    const BobValue* place = bobVariableOf(interp, now, variable.depth, variable.slot);
    return place ? *place : kBobNil;
  };
  const BobRunningFrame now = frameNow();
  const BobValue* self =
      lines && !lines->arguments.empty()
          ? bobVariableOf(interp, now,
                          uint32_t(bobVisibleVariables(*lines, now.offset).size() - 1 - lines->around.size()), 1)
          : nullptr;
  bobCheckStack(interp, uint32_t(seen.size()) + 3);
  bobPush(interp, function);
  bobPush(interp, self ? *self : scope->object);
  bobPush(interp, scope->object);
  for (const Seen& variable : seen) bobPush(interp, read(now, variable));
  const BobLocal results(interp->locals, bobRunCall(interp, int(seen.size()) + 2));

  const BobRunningFrame after = frameNow();
  for (size_t n = 0; n < seen.size(); ++n)
    if (BobValue* place = bobVariableOf(interp, after, seen[n].depth, seen[n].slot))
      *place = bobVectorElements(interp, results)[n + 1];
  return bobVectorElements(interp, results)[0];
}
