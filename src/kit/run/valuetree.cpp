#include "kit/run/valuetree.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "bob/bob.h"
#include "bob/debug/valueview.h"
#include "engine/engine.h"
#include "engine/page/frame.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "kit/run/pagerun.h"

namespace {

struct Member {
  std::string name, unread;  // why it can't be read; empty if it can
  std::unique_ptr<BobLocal> value;
};

class TreeText {
 public:
  TreeText(BobInterp* i, const ValueTreeLimits& l) : interp(i), limits(l) {}

  std::string of(const BobLocal& value) {
    add("", value, "");
    return text;
  }

 private:
  void line(const std::string& words) {
    if (++lines == limits.lines) text += "...\n";
    if (lines < limits.lines) text += std::string(2 * around.size(), ' ') + words + "\n";
  }

  void add(const std::string& name, const BobLocal& value, const std::string& unread) {
    const std::string head = name.empty() ? "" : name + ": ";
    if (!unread.empty()) return line(head + unread);
    const size_t count = bobMemberCount(interp, value);
    const std::string kind = count == 0 ? "" : "  (" + bobTypeName(interp, value) + ", " + std::to_string(count) + ")";
    line(head + bobValueText(interp, value) + kind);
    const bool isAbove = std::any_of(around.begin(), around.end(), [&](const BobLocal* a) { return *a == value; });
    if (count == 0 || isAbove || int(around.size()) == limits.depth || lines >= limits.lines) return;
    around.push_back(&value);
    addMembers(value, count);
    around.pop_back();
  }

  // All are kept before the first is shown: reading one may move the others.
  void addMembers(const BobLocal& value, size_t count) {
    std::vector<Member> members;
    bobForEachMember(interp, value, 0, limits.members,
                     [&](const std::string& name, BobValue member, const std::string& unread) {
                       members.push_back({name, unread, std::make_unique<BobLocal>(interp, member)});
                     });
    for (const Member& member : members) add(member.name, *member.value, member.unread);
    if (count > members.size()) line("... " + std::to_string(count - members.size()) + " more");
    while (!members.empty()) members.pop_back();  // the latest first, as the interpreter's list of locals wants it
  }

  BobInterp* const interp;
  const ValueTreeLimits limits;
  std::vector<const BobLocal*> around;
  std::string text;
  size_t lines = 0;
};

}  // namespace

std::string valueTree(PageRun& run, const std::string& expression, const ValueTreeLimits& limits) {
  const EngineScope here(run.engine());
  BobInterp* interp = scriptInterp();
  const Frame* frame = run.engine().topFrame;
  if (!interp || !frame || !frame->scriptEnv || !run.stopped().empty()) return "";
  run.player().beginActivity();
  std::string text;
  bobTry(interp, [&] {
    const BobLocal value(interp, bobEvaluate(frame->scriptEnv->scope, expression + ";"));
    text = TreeText(interp, limits).of(value);
  });
  return text;
}
