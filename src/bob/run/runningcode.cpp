#include "bob/run/runningcode.h"

#include <algorithm>
#include <map>

#include "bob/run/frames.h"
#include "bob/run/translate.h"

namespace {

// Offsets in code by positions in its quick code. Recursion meets the same code again and again.
class Offsets {
 public:
  explicit Offsets(BobInterp* i) : interp(i) {}

  // `from` lies after the word of the instruction that is being carried out.
  uint32_t of(BobValue code, const uint32_t* from) {
    const uint32_t pc = uint32_t(from - bobQuickCodeOf(interp, code).words.data());
    const auto [known, isNew] = marks.try_emplace(code);
    if (isNew) known->second = bobQuickMarks(interp, code);
    const std::vector<BobQuickMark>& all = known->second;
    const auto after =
        std::lower_bound(all.begin(), all.end(), pc, [](const BobQuickMark& m, uint32_t at) { return m.at < at; });
    return after == all.begin() ? 0 : after[-1].offset;
  }

 private:
  BobInterp* interp;
  std::map<BobValue, std::vector<BobQuickMark>> marks;
};

}  // namespace

std::vector<BobRunningFrame> bobRunningFrames(BobInterp* interp) {
  std::vector<BobRunningFrame> running;
  if (!interp->code) return running;
  Offsets offsets(interp);
  const auto add = [&](BobValue code, const uint32_t* pc, BobValue env, BobValue scope) {
    running.push_back({{code, offsets.of(code, pc)}, bobFollowMovedEnvironment(interp, env), scope, false});
  };
  add(interp->code, interp->pc, interp->env, interp->scope.object);
  for (const uint32_t* frame = interp->fp; frame < interp->stackTop; frame = interp->words(frame[kFramePrevious])) {
    if (bobFrameRecord(frame) == kBlockFrame) continue;
    running.back().calledByHost = bobFrameRecord(frame) == kTopFrame;
    if (!frame[kFrameCode]) break;
    add(frame[kFrameCode], bobFramePc(frame), frame[kFrameEnv], frame[kFrameScope]);
  }
  return running;
}

std::vector<BobRunningCode> bobRunningCode(BobInterp* interp) {
  std::vector<BobRunningCode> running;
  bool listed = true;  // a traceback leaves out what has called a native method
  for (const BobRunningFrame& frame : bobRunningFrames(interp)) {
    if (listed) running.push_back(frame);
    listed = !frame.calledByHost;
  }
  return running;
}
