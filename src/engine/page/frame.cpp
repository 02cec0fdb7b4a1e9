#include "engine/page/frame.h"

#include "bob/bob.h"
#include "engine/events/eventtrail.h"
#include "engine/events/graveyard.h"
#include "engine/page/directions.h"

namespace {

constexpr uint32_t kMaxLoadWidgets = 4 * kMaxPageWidgets;  // with the pages nested in the page

bool runScript(Frame* frame, ScriptAttribute script, Widget* widget) {
  return !widget->gone && frameOf(widget) == frame && widgetRunScript(widget, script);
}

// Follows the link of that name from the focused widget. Nothing checks whether the target is hidden.
bool moveFocus(Frame* frame, StringAttribute link) {
  if (!frame->focus) return false;
  const char* name = widgetAttrString(frame->focus, link);
  Widget* target = name ? frame->findWidget(name) : nullptr;
  if (!target) return false;
  widgetFocus(frame, target);
  return true;
}

int navigate(Frame* frame, const Event& event) {
  for (const Direction& direction : kDirections) {
    if (direction.data != event.data) continue;
    if (direction.script && runScript(frame, direction.script, frame->focus)) return 1;
    for (const StringAttribute link : direction.links)
      if (link && moveFocus(frame, link)) break;
    return 1;  // consumed, whether a move happened or not
  }
  return widgetBaseEvent(frame, event);
}

// Digit 3 focuses the third widget of the list, which is in post-order; 0 and 1 both mean the first.
void focusByPosition(Frame* frame, const Event& event) {
  if (!(event.data & kDigitFlag)) return;
  Widget* widget = frame->widgets;
  for (uint32_t left = event.data & 0xFFFF; left > 1 && widget; --left) widget = widget->nextInFrame;
  if (widget) widgetFocus(frame, widget);
}

}  // namespace

int Frame::handleEvent(const Event* event) { return frameHandleEvent(this, event); }

int Frame::ownerEvent(const Event& event) {
  EventTrail* trail = EventTrail::of(event);
  if (trail) trail->seen.push_back(id);
  const int answer = frameEvent(this, event);
  if (trail && answer) trail->consumed(id, false);
  return answer;
}

Widget* Frame::findWidget(const char* wanted) const { return names.find(wanted); }

bool Frame::countWidget() {
  return widgetsMade++ < kMaxPageWidgets && currentLoadCount().widgetsMade++ < kMaxLoadWidgets;
}

void Frame::runScript(const EventTarget* widget, ScriptAttribute hook, PageScript script) {
  EngineCall call;
  if (!language || observerListens()) return;
  ScriptWatch watch([&] {
    const std::string_view bytes(reinterpret_cast<const char*>(script.data()), script.size());
    const char* attribute = hook;
    return ScriptRun{ScriptKind::hook, widget->id, attribute, 0, bobObjectStreamName(bytes)};
  });
  watch.ended(language->run(this, script.data(), uint32_t(script.size())));
}

void Frame::append(WidgetPtr<>&& widget) {
  names.append(widget.get());  // first, as it may find no memory
  *widgetsTail = widget.release();
  widgetsTail = &(*widgetsTail)->nextInFrame;
}

WidgetPtr<> Frame::takeFirst() {
  WidgetPtr<> widget(widgets);
  widgets = widget->nextInFrame;
  if (!widgets) widgetsTail = &widgets;
  names.takeFirst(widget.get());
  if (focus == widget.get()) focus = nullptr;
  return widget;
}

void Frame::abandonPage() noexcept {
  ++generation;
  while (widgets) takeFirst().reset();
  textStyles.clear();
  if (!pageData) return;
  reportEnd([this](EngineObserver& observer) { observer.pageUnloaded(id, pageName); });
  bury(std::move(pageData));
}

int frameHandleEvent(Frame* frame, const Event* event) {
  if (!event) return 1;
  return frame->focus ? eventSend(frame->focus, *event) : frameEvent(frame, *event);
}

int frameEvent(Frame* frame, const Event& event) {
  if (frame->gone) return 0;
  switch (event.code) {
    case kDirectionKey:
      if (frame->focus) return navigate(frame, event);
      break;
    case kSelectKey:
      if (!frame->focus) break;
      runScript(frame, "onClick", frame->focus);
      return 1;
    case kDigitKey:
      if (!frame->focus) break;
      focusByPosition(frame, event);
      return 1;
    case kFullRedraw:
    case kContentRedraw: widgetPaint(frame); return 1;
  }
  return widgetBaseEvent(frame, event);
}

void widgetFocus(Frame* frame, Widget* widget) {
  EngineCall call;
  if (!frame || frame->gone || widget == frame->focus) return;
  const uint32_t generation = frame->generation;
  const WidgetId from = frame->focus ? frame->focus->id : 0;
  if (Widget* old = frame->focus) {
    eventSendSimple(old, kFocusChange, 0);
    runScript(frame, "onBlur", old);
  }
  if (frame->gone || frame->generation != generation || (widget && widget->gone)) return;
  frame->focus = widget;
  if (const ObserverReport report; report) report->focusMoved(frame->id, from, widget ? widget->id : 0);
  if (!widget) return;
  eventSendSimple(widget, kFocusChange, 1);
  runScript(frame, "onFocus", widget);
}

Widget* frameFindWidget(const Frame* frame, const char* name) { return frame->findWidget(name); }

int stylesLoad(Frame* frame, const PageTable& table) { return frame->textStyles.read(table) ? 1 : 0; }

const TextStyle* styleFind(const Frame* frame, const char* name) { return frame->textStyles.find(name); }

int frameRunScript(Frame* frame, ScriptAttribute name) {
  PageScript script;
  if (!frame->pageData) return 0;
  if (!attrScript(frame->rootObject, name, &script)) return 0;
  frame->runScript(frame, name, script);
  return 1;
}
