// Widgets: everything visible on a page, and what all kinds share.
//
// A kind is a record that begins with a Widget and answers its own events; what it doesn't know goes to
// widgetBaseEvent. Children are not drawn by their parent: each widget has its own place in the redraw queue, and
// repainting a parent paints over its children without repainting them.
//
// The frame's list owns its widgets. It is intrusive, as are those of slaves and of what wants to be drawn: scripts
// take widgets out of all three while they are walked. A widget that is no longer, or not yet, on the list is a
// WidgetPtr's; it ends by widgetDestroy alone, since it may be in use.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "engine/events/eventtarget.h"
#include "engine/events/redrawqueue.h"
#include "engine/events/timer.h"
#include "engine/format/attributes.h"
#include "engine/format/pagefile.h"

struct Widget;

// What a widget asks of the frame that owns it.
struct WidgetOwner {
  virtual Widget* findWidget(const char* name) const = 0;  // the first of that name; null if none
  virtual WidgetId ownerId() const = 0;

  // Counts one more widget against what the page being loaded, and all the pages in it, may hold; false when full.
  virtual bool countWidget() = 0;

  virtual int ownerEvent(const Event& event) = 0;  // an event that none of its widgets wanted

  // A script of the widget's page, from the attribute `hook`.
  virtual void runScript(const EventTarget* widget, ScriptAttribute hook, PageScript script) = 0;

 protected:
  ~WidgetOwner() = default;
};

// The timer that hides a widget some time after it was shown.
struct TimeoutTimer : Timer {
  using Timer::Timer;
  TimerIdentity identity() const override;

  Widget* widget = nullptr;
};

struct Widget : EventTarget, Redrawable {
  // A bare widget with the record's rectangle, relative to the parent's corner. widgetCreate reads the rest.
  Widget(WidgetOwner* owner, Widget* parent, PageObject record);

  int handleEvent(const Event* event) override;  // draws, and leaves the rest to widgetBaseEvent
  void redraw() override;                        // sends itself the draw events that its flags ask for
  virtual void abandonPage() noexcept {}         // a frame drops its page, for it goes with the page around it

  WidgetOwner* owner;    // its frame, which frameOf (frame.h) returns as one; null for the top frame
  Widget* parentWidget;  // the widget that it lies in, or the frame
  TimeoutTimer* timeoutTimer = nullptr;
  const char* name = nullptr;  // in the page
  PageObject record;
  uint32_t bgColor = 0;
  uint32_t frameColor = 0;
  int32_t frameWidth = 0;                 // pixels
  std::optional<std::string> background;  // image file
  uint32_t flags = 0;                     // kWidget...
  int depth = 1;                          // of nesting inside its page; the root has 1
  Widget* slaves = nullptr;               // widgets that follow this one's highlight
  Widget* nextSlave = nullptr;
  Widget* master = nullptr;       // the widget whose slaves this one is among
  Widget* nextInFrame = nullptr;  // in the frame's list
  Widget* nextOfName = nullptr;   // in that list, after this one
};

// Widget flags.
inline constexpr uint32_t kWidgetFullRedraw = 0x40000000;  // wants kFullRedraw
inline constexpr uint32_t kWidgetContentRedraw = 0x20000000;
inline constexpr uint32_t kWidgetNavigateLeftRight = 0x10000000;
inline constexpr uint32_t kWidgetNavigateUpDown = 0x08000000;
inline constexpr uint32_t kWidgetImmediate = 0x04000000;
inline constexpr uint32_t kWidgetContentHidden = 0x02000000;
inline constexpr uint32_t kWidgetBackgroundHidden = 0x01000000;
inline constexpr uint32_t kWidgetHighlighted = 0x00400000;  // has the focus, or its master has
inline constexpr uint32_t kWidgetHasBgColor = 0x00200000;
inline constexpr uint32_t kWidgetTileBackground = 0x00100000;
inline constexpr uint32_t kWidgetHighlightFrame = 0x00080000;

// ---- life

// Stops its timer, takes it off every list and frees it. A nested frame's page goes with it, without events or scripts.
void widgetDestroy(Widget* widget) noexcept;

struct WidgetEnd {
  void operator()(Widget* widget) const { widgetDestroy(widget); }
};
template <class T = Widget>
using WidgetPtr = std::unique_ptr<T, WidgetEnd>;

// Makes a widget of kind T and reads the attributes that all kinds share. Null on failure.
bool widgetInitialize(Widget* widget);
template <class T = Widget>
WidgetPtr<T> widgetCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  WidgetPtr<T> widget(new T(owner, parent, record));
  return widgetInitialize(widget.get()) ? std::move(widget) : nullptr;
}

// ---- events

int widgetBaseEvent(Widget* widget, const Event& event);

// Runs the script attribute of that name: 1 if there is one, whatever it did.
int widgetRunScript(Widget* widget, ScriptAttribute name);

// ---- showing and changing

void widgetPaint(Widget* widget);  // background and highlight frame
void widgetShow(Widget* widget);
void widgetHide(Widget* widget);
void widgetShowBackground(Widget* widget);
void widgetHideBackground(Widget* widget);
void widgetSetBgColor(Widget* widget, uint32_t color);  // a widget without bgColor in its page won't show it
void widgetSetBackground(Widget* widget, const char* nameOrNull);
bool widgetSetHighlight(Widget* widget, bool on);  // whether that changed it; slaves are left alone

// Queues the widget for a redraw of `bits` (kWidgetFullRedraw, kWidgetContentRedraw).
void widgetMarkDirty(Widget* widget, uint32_t bits);

// Asks for a content redraw, unless there is nothing to see: content hidden, and no background picture or that hidden.
void widgetInvalidate(Widget* widget);

// ---- attributes of the widget's own record: null, or false, when absent or refused

const char* widgetAttrString(const Widget* widget, StringAttribute name);
bool widgetAttrInt(const Widget* widget, IntegerAttribute name, int32_t* out);
bool widgetAttrBool(const Widget* widget, BooleanAttribute name, bool* out);
bool widgetAttrColor(const Widget* widget, ColorAttribute name, uint32_t* out);
bool widgetAttrTable(const Widget* widget, TableAttribute name, PageTable* out);
bool widgetAttrScript(const Widget* widget, ScriptAttribute name, PageScript* out);

// `align` in bits 1-0 (0 left, 1 center, 2 right) and `valign` in bits 3-2 (0 top, 4 center, 8 bottom).
uint32_t widgetAlign(const Widget* widget);

// Reads `navigate` and `immediate` into the flags.
void widgetReadNavigate(Widget* widget);
