#include "kit/focus/focusways.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t kDigitTargets = 9;

constexpr FocusWay kWays[] = {{"up", 0, -1},      {"down", 0, 1},      {"left", -1, 0},    {"right", 1, 0},
                              {"upLeft", -1, -1}, {"downLeft", -1, 1}, {"upRight", 1, -1}, {"downRight", 1, 1}};

bool answers(const AttributeView& attribute) {
  constexpr std::array<std::string_view, 12> kSigns{"highlightTextStyle",
                                                    "highlightSrc",
                                                    "selectTextStyle",
                                                    "navigate",
                                                    "maxLength",
                                                    "onClick",
                                                    "onFocus",
                                                    "onBlur",
                                                    "onUp",
                                                    "onDown",
                                                    "onLeft",
                                                    "onRight"};
  if (attribute.name == "highlightFrame") return attribute.text == "true";
  const bool isLink = std::any_of(std::begin(kWays), std::end(kWays),
                                  [&](const FocusWay& way) { return way.direction == attribute.name; });
  return isLink || std::find(kSigns.begin(), kSigns.end(), attribute.name) != kSigns.end();
}

}  // namespace

const FocusWay& focusWay(std::string_view direction) {
  return *std::find_if(std::begin(kWays), std::end(kWays), [&](const auto& way) { return way.direction == direction; });
}

ArrowState FocusWidget::stateOf(const LinkView& link) const {
  const FocusWay& way = focusWay(link.direction);
  if (hasFocusInside) return ArrowState::staysInside;
  const bool isDiagonal = way.x != 0 && way.y != 0;
  const bool takesAny = view.takesUpDown || view.takesLeftRight;
  if ((isDiagonal && takesAny) || (way.x == 0 && view.takesUpDown) || (way.y == 0 && view.takesLeftRight))
    return ArrowState::takenByKind;
  if (view.kind == WidgetKind::textContainer && way.x == 0) return ArrowState::takenByKind;
  return link.script ? ArrowState::script : ArrowState::followed;
}

FocusWays::FocusWays(Engine& engine, WidgetId frame) : frames(inspectFrames(engine)) {
  itsFrame = frame != 0 ? frame : innermost();
  readWidgets(engine);
  if (all.empty()) return;
  readOrder();
  findStart();
}

const FrameView* FocusWays::findFrame(WidgetId id) const {
  const auto found = std::find_if(frames.begin(), frames.end(), [&](const FrameView& f) { return f.id == id; });
  return found == frames.end() ? nullptr : &*found;
}

// From the top one on, as long as what has the focus is a frame with a page.
WidgetId FocusWays::innermost() const {
  if (frames.empty()) return 0;
  const FrameView* frame = &frames.front();
  for (const FrameView* next = findFrame(frame->focus); next && next->widgets > 0; next = findFrame(frame->focus))
    frame = next;
  return frame->id;
}

void FocusWays::readWidgets(Engine& engine) {
  inspectPage(engine, itsFrame, [this](WidgetDetails details) {
    FocusWidget widget;
    for (const AttributeView& attribute : details.attributes) {
      if (attribute.origin != ValueOrigin::page) continue;
      widget.isTypedInto |= attribute.name == "maxLength";
      widget.answersFocus |= answers(attribute);
    }
    const FrameView* inside = findFrame(details.view.id);
    widget.hasFocusInside = inside && inside->focus != 0;
    widget.links = std::move(details.links);
    places[details.view.id] = all.size();
    widget.view = std::move(details.view);
    all.push_back(std::move(widget));
  });
}

// Digits count, and names are looked for, in an order in which what lies in a widget comes before it.
void FocusWays::readOrder() {
  std::map<WidgetId, std::vector<size_t>> children;
  for (size_t i = 0; i < all.size(); ++i) children[all[i].view.parent].push_back(i);
  struct Step {
    size_t widget;
    bool isEntered;
  };
  std::vector<Step> waiting;
  const auto enter = [&](WidgetId parent) {
    const std::vector<size_t>& list = children[parent];
    for (auto child = list.rbegin(); child != list.rend(); ++child) waiting.push_back({*child, false});
  };
  enter(itsFrame);
  while (!waiting.empty()) {
    const Step step = waiting.back();
    const WidgetView& widget = all[step.widget].view;
    if (!step.isEntered) {
      waiting.back().isEntered = true;
      enter(widget.id);
      continue;
    }
    waiting.pop_back();
    if (digitTargets.size() < kDigitTargets) digitTargets.push_back(step.widget);
    if (!widget.name.empty()) names.emplace(widget.name, widget.id);
  }
}

WidgetId FocusWays::named(const std::string& name) const {
  const auto found = names.find(name);
  return found == names.end() ? 0 : found->second;
}

void FocusWays::findStart() {
  const FrameView& frame = *findFrame(itsFrame);
  if (!frame.start.empty()) itsStart = named(frame.start);
  if (!frame.start.empty() && itsStart == 0) itsMissingStart = frame.start;
  if (itsStart == 0 && places.contains(frame.focus)) itsStart = frame.focus;
}

std::set<size_t> FocusWays::reached(bool withDigits) const {
  std::set<size_t> reached;
  std::vector<size_t> waiting;
  const auto reach = [&](size_t i) {
    if (reached.insert(i).second) waiting.push_back(i);
  };
  if (const auto start = places.find(itsStart); start != places.end()) reach(start->second);
  while (!waiting.empty()) {
    const FocusWidget& from = all[waiting.back()];
    waiting.pop_back();
    for (const LinkView& link : from.links)
      if (const auto to = places.find(link.target); to != places.end() && from.stateOf(link) == ArrowState::followed)
        reach(to->second);
    if (withDigits && !from.isTypedInto && !from.hasFocusInside)
      for (const size_t i : digitTargets) reach(i);
  }
  return reached;
}
