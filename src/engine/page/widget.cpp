#include "engine/page/widget.h"

#include <string_view>

#include "engine/base/watch.h"
#include "engine/events/graveyard.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

constexpr int32_t kDefaultFrameWidth = 4;  // pixels

void timedOut(Timer* timer, TimerReason reason) {
  if (reason == TimerReason::fired) widgetHide(static_cast<TimeoutTimer*>(timer)->widget);
}

bool flagFromAttribute(Widget* widget, BooleanAttribute name, uint32_t flag) {
  bool on = false;
  if (widgetAttrBool(widget, name, &on) && on) widget->flags |= flag;
  return on;
}

void readBackground(Widget* widget) {
  if (widgetAttrColor(widget, "bgColor", &widget->bgColor)) widget->flags |= kWidgetHasBgColor;
  if (const char* image = widgetAttrString(widget, "background")) widget->background = image;
  flagFromAttribute(widget, "tileBackground", kWidgetTileBackground);
}

void readHighlightFrame(Widget* widget) {
  if (!flagFromAttribute(widget, "highlightFrame", kWidgetHighlightFrame)) return;
  widget->frameWidth = kDefaultFrameWidth;
  widgetAttrColor(widget, "frameColor", &widget->frameColor);
  widgetAttrInt(widget, "frameWidth", &widget->frameWidth);
}

void readTimeout(Widget* widget) {
  int32_t interval;
  if (!widgetAttrInt(widget, "timeout", &interval)) return;
  widget->timeoutTimer = new TimeoutTimer(timedOut);
  widget->timeoutTimer->widget = widget;
  widget->timeoutTimer->interval = uint32_t(interval);
}

uint32_t hiddenFlags(const char* text) {
  const std::string_view word = text ? text : "";
  if (word == "yes" || word == "true" || word == "both") return kWidgetContentHidden | kWidgetBackgroundHidden;
  if (word == "content") return kWidgetContentHidden;
  if (word == "background") return kWidgetBackgroundHidden;
  return 0;
}

void readMaster(Widget* widget) {
  if (!widget->owner) return;
  const char* name = widgetAttrString(widget, "master");
  if (!name) return;
  Widget* master = widget->owner->findWidget(name);
  if (!master) {
    hostLog("Widget '%s' not found\n", name);
    return;
  }
  widget->master = master;
  widget->nextSlave = master->slaves;
  master->slaves = widget;
}

void leaveMaster(Widget* widget) {
  if (!widget->master) return;
  Widget** link = &widget->master->slaves;
  while (*link != widget) link = &(*link)->nextSlave;
  *link = widget->nextSlave;
  widget->master = nullptr;
}

void freeSlaves(Widget* widget) {
  while (widget->slaves) leaveMaster(widget->slaves);
}

void showInternal(Widget* widget) {
  if (widget->timeoutTimer) timerStart(widget->timeoutTimer, widget->timeoutTimer->interval, false);
  widget->flags &= ~kWidgetContentHidden;
  widgetMarkDirty(widget, kWidgetFullRedraw);
}

// Whether the content is hidden and no background picture shows either.
bool nothingToSee(const Widget* widget) {
  return widget->flags & kWidgetContentHidden && (!widget->background || widget->flags & kWidgetBackgroundHidden);
}

void highlightWithSlaves(Widget* widget, bool on) {
  const auto set = [on](Widget* w) {
    w->flags = on ? w->flags | kWidgetHighlighted : w->flags & ~kWidgetHighlighted;
    widgetMarkDirty(w, kWidgetContentRedraw);
  };
  set(widget);
  for (Widget* slave = widget->slaves; slave; slave = slave->nextSlave) set(slave);
}

// The widget that it lies in on its page; null for the page's root.
Widget* widgetAround(const Widget* widget) {
  Widget* parent = widget->parentWidget;
  return parent && parent->owner == widget->owner ? parent : nullptr;
}

std::string_view orNothing(const char* text) { return text ? text : ""; }

WidgetMade describe(const Widget& widget) {
  const EventTarget* around = widget.parentWidget;
  return {widget.id,
          around ? around->id : 0,
          widget.owner ? widget.owner->ownerId() : 0,
          orNothing(attrPlainString(widget.record, "type")),
          orNothing(attrPlainString(widget.record, "name")),
          widget.bounds};
}

ScriptAttribute scriptForEvent(uint32_t code) {
  switch (code) {
    case kRunOnChange: return "onChange";
    case kRunOnUp: return "onUp";
    case kRunOnDown: return "onDown";
    case kRunOnLeft: return "onLeft";
    case kRunOnRight: return "onRight";
    default: return nullptr;
  }
}

}  // namespace

TimerIdentity TimeoutTimer::identity() const { return {TimerKind::timeout, widget->id}; }

Widget::Widget(WidgetOwner* o, Widget* p, PageObject r) : EventTarget(p), owner(o), parentWidget(p), record(r) {
  bounds = {r.x(), r.y(), r.width(), r.height()};
  if (!p) return;
  bounds.x = hsWrapAdd(bounds.x, p->bounds.x);
  bounds.y = hsWrapAdd(bounds.y, p->bounds.y);
  if (const Widget* around = widgetAround(this)) depth = around->depth + 1;
}

int Widget::handleEvent(const Event* event) {
  if (!event) return 1;
  if (event->code != kFullRedraw && event->code != kContentRedraw) return widgetBaseEvent(this, *event);
  widgetPaint(this);
  return 1;
}

void Widget::redraw() {
  const DrawingWatch watch(id);
  if (flags & kWidgetFullRedraw) {
    flags &= ~(kWidgetFullRedraw | kWidgetContentRedraw);
    drawnAs = currentRedraws().nextRedraw();
    if (flags & kWidgetContentHidden) {
      widgetPaint(this);
    } else {
      eventSendSimple(this, kFullRedraw, 0);
    }
  }
  if (flags & kWidgetContentRedraw && !gone) {
    flags &= ~kWidgetContentRedraw;
    if (flags & kWidgetContentHidden) return;
    drawnAs = currentRedraws().nextRedraw();
    eventSendSimple(this, kContentRedraw, 0);
  }
}

bool widgetInitialize(Widget* widget) {
  if (const ObserverReport report; report) report->widgetMade(describe(*widget));
  if (widget->owner && !widget->owner->countWidget()) return false;
  widget->name = widgetAttrString(widget, "name");
  readBackground(widget);
  readHighlightFrame(widget);
  readTimeout(widget);
  widget->flags |= hiddenFlags(widgetAttrString(widget, "hidden"));
  readMaster(widget);
  // A background picture counts as something to see, and then hidden content is shown with it.
  if (!nothingToSee(widget)) showInternal(widget);
  return true;
}

void widgetDestroy(Widget* widget) noexcept {
  EngineCall call;
  if (widget->gone) return;
  widget->gone = true;
  reportEnd([widget](EngineObserver& observer) { observer.widgetGone(widget->id); });
  widget->scriptHandle.release();
  if (widget->timeoutTimer) timerDestroy(widget->timeoutTimer);
  currentRedraws().remove(widget);
  leaveMaster(widget);
  freeSlaves(widget);
  targetDestroyLists(widget);
  widget->abandonPage();
  bury(std::unique_ptr<Widget>(widget));
}

int widgetBaseEvent(Widget* widget, const Event& event) {
  if (event.code == kFocusChange) {
    highlightWithSlaves(widget, event.data != 0);
    return 1;
  }
  if (event.code == kWidgetDestroyed) return 1;
  if (const ScriptAttribute script = scriptForEvent(event.code); script && widgetRunScript(widget, script)) return 1;

  if (widget->gone) return 0;
  if (Widget* around = widgetAround(widget)) return eventSend(around, event);
  return widget->owner ? widget->owner->ownerEvent(event) : 0;
}

int widgetRunScript(Widget* widget, ScriptAttribute name) {
  PageScript script;
  if (!widgetAttrScript(widget, name, &script)) return 0;
  widget->owner->runScript(widget, name, script);
  return 1;
}

void widgetShow(Widget* widget) {
  if (widget->flags & kWidgetContentHidden) showInternal(widget);
}

void widgetHide(Widget* widget) {
  if (widget->flags & kWidgetContentHidden) return;
  if (widget->timeoutTimer) timerStop(widget->timeoutTimer);
  widget->flags |= kWidgetContentHidden;
  widgetMarkDirty(widget, kWidgetFullRedraw);
}

void widgetShowBackground(Widget* widget) {
  if (!(widget->flags & kWidgetBackgroundHidden)) return;
  widgetMarkDirty(widget, kWidgetFullRedraw);
  widget->flags &= ~kWidgetBackgroundHidden;
}

void widgetHideBackground(Widget* widget) {
  if (widget->flags & kWidgetBackgroundHidden) return;
  widgetMarkDirty(widget, kWidgetFullRedraw);
  widget->flags |= kWidgetBackgroundHidden;
}

void widgetSetBgColor(Widget* widget, uint32_t color) {
  widget->bgColor = color;
  widgetInvalidate(widget);
}

void widgetSetBackground(Widget* widget, const char* nameOrNull) {
  if (nameOrNull) {
    widget->background = nameOrNull;
  } else {
    widget->background.reset();
  }
  widgetInvalidate(widget);
}

bool widgetSetHighlight(Widget* widget, bool on) {
  if (on == ((widget->flags & kWidgetHighlighted) != 0)) return false;
  widget->flags ^= kWidgetHighlighted;
  widgetInvalidate(widget);
  return true;
}

void widgetMarkDirty(Widget* widget, uint32_t bits) {
  if (widget->gone) return;
  currentRedraws().add(widget);
  widget->flags |= bits;
}

void widgetInvalidate(Widget* widget) {
  if (!nothingToSee(widget)) widgetMarkDirty(widget, kWidgetContentRedraw);
}

const char* widgetAttrString(const Widget* widget, StringAttribute name) {
  const char* text = nullptr;
  return attrString(widget->record, name, &text) ? text : nullptr;
}

bool widgetAttrInt(const Widget* w, IntegerAttribute name, int32_t* out) { return attrInt(w->record, name, out); }
bool widgetAttrBool(const Widget* w, BooleanAttribute name, bool* out) { return attrBool(w->record, name, out); }
bool widgetAttrColor(const Widget* w, ColorAttribute name, uint32_t* out) { return attrColor(w->record, name, out); }
bool widgetAttrTable(const Widget* w, TableAttribute name, PageTable* out) { return attrTable(w->record, name, out); }
bool widgetAttrScript(const Widget* w, ScriptAttribute name, PageScript* out) {
  return attrScript(w->record, name, out);
}

uint32_t widgetAlign(const Widget* widget) {
  const auto word = [widget](StringAttribute name) {
    const char* text = widgetAttrString(widget, name);
    return std::string_view(text ? text : "");
  };
  const std::string_view align = word("align"), valign = word("valign");
  const uint32_t horizontal = align == "center" ? 1 : align == "right" ? 2 : 0;
  const uint32_t vertical = valign == "center" ? 4 : valign == "bottom" ? 8 : 0;
  return horizontal | vertical;
}

void widgetReadNavigate(Widget* widget) {
  const char* text = widgetAttrString(widget, "navigate");
  const std::string_view word = text ? text : "";
  if (word == "leftRight" || word == "both") widget->flags |= kWidgetNavigateLeftRight;
  if (word == "upDown" || word == "both") widget->flags |= kWidgetNavigateUpDown;
  flagFromAttribute(widget, "immediate", kWidgetImmediate);
}
