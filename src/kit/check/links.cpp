// Where the keys move the focus, and who shares whose highlight.
#include <algorithm>
#include <array>
#include <set>

#include "kit/check/checks.h"

namespace {

constexpr size_t kDigitTargets = 9;

struct Direction {
  std::string_view link, script;
  bool isVertical, isHorizontal;
};
constexpr Direction kDirections[] = {
    {"up", "onUp", true, false},       {"down", "onDown", true, false}, {"left", "onLeft", false, true},
    {"right", "onRight", false, true}, {"upLeft", "", true, true},      {"upRight", "", true, true},
    {"downLeft", "", true, true},      {"downRight", "", true, true},
};

bool answersFocus(const CheckedWidget& widget) {
  constexpr std::array<std::string_view, 5> kSigns{"navigate", "maxLength", "onClick", "onFocus", "onBlur"};
  const auto has = [&](std::string_view attribute) { return !attribute.empty() && widget.has(attribute); };
  return std::any_of(std::begin(kSigns), std::end(kSigns), has) ||
         std::any_of(std::begin(kDirections), std::end(kDirections),
                     [&](const Direction& d) { return has(d.link) || has(d.script); });
}

// Whether the widget takes the key for itself, to change its value or to move its lines.
bool takes(const CheckedWidget& widget, const Direction& direction) {
  if (widget.type == "textContainer") return direction.isVertical && !direction.isHorizontal;
  if (widget.type != "number" && widget.type != "slider" && widget.type != "select") return false;
  const std::string navigate = widget.text("navigate");
  return (direction.isVertical && (navigate == "upDown" || navigate == "both")) ||
         (direction.isHorizontal && (navigate == "leftRight" || navigate == "both"));
}

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
  Focus(const CheckedPage& p, const Find& f) : page(p), find(f) {}

  void check() {
    const auto start = page.named(page.root().text("start"));
    if (!start || scriptsMayMoveFocus(page)) return;
    reach(*start);
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
  bool isStop(size_t i) const { return answersFocus(page.widgets[i]) && !page.widgets[i].has("master"); }

  std::optional<size_t> target(size_t from, const Direction& direction) const {
    const CheckedWidget& widget = page.widgets[from];
    if (takes(widget, direction) || (!direction.script.empty() && widget.has(direction.script))) return std::nullopt;
    return page.named(widget.text(direction.link));
  }

  void reach(size_t start) {
    std::vector<size_t> waiting{start};
    reached.insert(start);
    while (!waiting.empty()) {
      const size_t from = waiting.back();
      waiting.pop_back();
      for (const Direction& direction : kDirections)
        if (const auto to = target(from, direction); to && reached.insert(*to).second) waiting.push_back(*to);
    }
  }

  // A page inside a frame has keys of its own, and a script may open another page.
  bool leaves(size_t i) const {
    const CheckedWidget& widget = page.widgets[i];
    return widget.type == "frame" || std::any_of(std::begin(kDirections), std::end(kDirections), [&](const auto& d) {
             const auto to = target(i, d);
             return (to && *to != i) || (!d.script.empty() && widget.has(d.script) && !takes(widget, d));
           });
  }

  void sayUnreachable(size_t i, const CheckedWidget& start) const {
    const auto order = std::find(page.complete.begin(), page.complete.end(), i) - page.complete.begin();
    const std::string from = "no direction key leads from '" + start.name + "' to " + page.widgets[i].label;
    find("unreachable", page.widgets[i].place(),
         size_t(order) < kDigitTargets ? from + "; only the digit " + std::to_string(order + 1) + " does" : from);
  }

  const CheckedPage& page;
  const Find& find;
  std::set<size_t> reached;
};

}  // namespace

void checkLinks(const CheckedPage& page, const Find& find) {
  checkMasters(page, find);
  Focus(page, find).check();
}
