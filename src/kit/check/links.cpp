// Where the keys move the focus, and who shares whose highlight.
#include <algorithm>
#include <set>

#include "engine/engine.h"
#include "kit/check/checks.h"
#include "kit/focus/focusways.h"

namespace {

bool mentions(const std::vector<PageEntry>& attributes, std::string_view word) {
  return std::any_of(attributes.begin(), attributes.end(), [&](const PageEntry& entry) {
    return entry.value.tag == PageTag::script && entry.value.bytes.find(word) != std::string::npos;
  });
}

// Scripts may move the focus anywhere, and nothing is known of those in object files that were there before.
bool scriptsMayMoveFocus(const CheckedPage& page) {
  const PageValue* files = page.root().find("scripts");
  if (files && files->table.size() > page.tree.scriptFiles.size()) return true;
  constexpr std::string_view kMove = "SetFocus";
  const auto& scripts = page.tree.scriptFiles;
  return std::any_of(page.widgets.begin(), page.widgets.end(),
                     [&](const CheckedWidget& widget) { return mentions(widget.node->attributes, kMove); }) ||
         std::any_of(scripts.begin(), scripts.end(),
                     [&](const ScriptFile& script) { return script.bytes.find(kMove) != std::string::npos; });
}

void checkMasters(const CheckedPage& page, const Find& find) {
  for (const CheckedWidget& widget : page.widgets) {
    const auto master = page.named(widget.text("master"));
    if (!master || page.widgets[*master].ends < widget.begins) continue;
    find("late-master", widget.place("master"),
         "the player makes '" + page.widgets[*master].name + "' after " + widget.label +
             ", which then has no master and never shows its highlight");
  }
}

class Focus {
 public:
  Focus(const CheckedPage& p, OpenedPage& opened, const Find& f)
      : page(p), find(f), ways(opened.engine(), opened.engine().topFrame->id) {}

  void check() const {
    const auto start = page.named(page.root().text("start"));
    if (!start) return;
    const std::set<size_t> reached = ways.reached(false);
    size_t stops = 0;
    for (size_t i = 0; i < page.widgets.size(); ++i) stops += reached.contains(i) || isStop(i);
    for (size_t i = 0; i < page.widgets.size(); ++i) {
      if (!reached.contains(i)) {
        if (isStop(i)) sayUnreachable(i, page.widgets[*start]);
      } else if (stops > 1 && !leaves(i)) {
        find("focus-trap", page.widgets[i].place(),
             "no direction key takes the focus away from " + page.widgets[i].label);
      }
    }
  }

 private:
  // What shares the highlight of another isn't meant to have the focus.
  bool isStop(size_t i) const { return ways.widgets()[i].answersFocus && !page.widgets[i].has("master"); }

  // A page inside a frame has keys of its own, and a script may open another page.
  bool leaves(size_t i) const {
    const FocusWidget& widget = ways.widgets()[i];
    return page.widgets[i].type == "frame" ||
           std::any_of(widget.links.begin(), widget.links.end(), [&](const LinkView& link) {
             const ArrowState state = widget.stateOf(link);
             const bool leads = link.target != 0 && link.target != widget.view.id;
             return state == ArrowState::script || (state == ArrowState::followed && leads);
           });
  }

  void sayUnreachable(size_t i, const CheckedWidget& start) const {
    const std::string from = "no direction key leads from '" + start.name + "' to " + page.widgets[i].label;
    const auto digit = std::find(ways.digits().begin(), ways.digits().end(), i);
    const auto number = std::to_string(digit - ways.digits().begin() + 1);
    find("unreachable", page.widgets[i].place(),
         digit == ways.digits().end() ? from : from + "; only the digit " + number + " does");
  }

  const CheckedPage& page;
  const Find& find;
  const FocusWays ways;  // its widgets are those of the page, in the same order
};

}  // namespace

void checkLinks(const CheckedPage& page, OpenedPage& opened, const Find& find) {
  checkMasters(page, find);
  if (!opened.widgetsOf(page).empty() && !scriptsMayMoveFocus(page)) Focus(page, opened, find).check();
}
