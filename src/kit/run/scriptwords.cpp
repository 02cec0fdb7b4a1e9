#include "kit/run/scriptwords.h"

#include <algorithm>
#include <cctype>

#include "bob/bob.h"
#include "bob/debug/valueview.h"
#include "engine/engine.h"
#include "engine/inspect.h"
#include "engine/page/frame.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "kit/run/pagerun.h"

namespace {

// Operators are selectors, too, and not to be typed after a dot.
bool isWord(const std::string& name) {
  const auto isLetter = [](unsigned char c) { return c < 128 && (std::isalnum(c) || c == '_'); };
  return !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
         std::all_of(name.begin(), name.end(), isLetter);
}

std::vector<std::string> sorted(std::vector<std::string> names) {
  std::erase_if(names, [](const std::string& name) { return !isWord(name); });
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace

ScriptWords scriptWords(PageRun& run) {
  const EngineScope here(run.engine());
  BobInterp* interp = scriptInterp();
  const Frame* frame = run.engine().topFrame;
  if (!interp || !frame || !frame->scriptEnv) return {};
  std::vector<std::string> selectors = bobSymbolNames(interp);
  for (const WidgetView& widget : inspectWidgets(run.engine())) selectors.push_back(widget.name);
  return {sorted(bobGlobalNames(interp, bobScopeObject(frame->scriptEnv->scope))), sorted(std::move(selectors))};
}
