// Event targets: the part that frames, widgets and script targets share, and the delivery of events to them.
//
// The lists of hooks and of active targets are intrusive on purpose: a hook may remove any other in the middle of a
// walk, and what the walk does then is behaviour that pages meet. A chained hook belongs to its target.
#pragma once

#include <cstdint>

#include "engine/base/bounds.h"
#include "engine/base/mortal.h"
#include "engine/base/observer.h"
#include "engine/events/event.h"
#include "engine/events/scripthandle.h"

struct EventTarget;

WidgetId newWidgetId();  // of the current engine; 0 without one

// A hook for one event code. `fn` is also called with a null event when its target goes; the hook is freed after that.
struct EventHandler : Mortal {
  explicit EventHandler(uint32_t c) : code(c) {}
  virtual int fn(const Event* event) = 0;  // non-zero when it has consumed the event

  uint32_t code;
  EventHandler** owner = nullptr;  // the link that points here; null when unchained
  EventHandler* next = nullptr;
};

struct EventTarget : Mortal {
  explicit EventTarget(EventTarget* p) : parent(p) {}
  EventTarget(const EventTarget&) = delete;
  EventTarget& operator=(const EventTarget&) = delete;

  // Non-zero when the event is consumed; a select answers some questions by the number itself. A null event says that
  // the target leaves the active list or the default place, and is answered with 1. By default the parent decides.
  virtual int handleEvent(const Event* event);

  const WidgetId id = newWidgetId();
  EventHandler* observers = nullptr;  // all that match hear every posted event
  EventHandler* handlers = nullptr;   // at most one for a code; asked first
  EventTarget* parent;
  EventTarget* nextActive = nullptr;
  uint32_t targetFlags = 0;
  Bounds bounds;
  ScriptHandle scriptHandle;
  bool gone = false;  // destroyed; only its memory is still here
};

inline constexpr uint32_t kTargetActive = 1;  // targetFlags: on the active list

// Where one engine's posted events go.
class EventTargets {
 public:
  // Observers of all active targets, then the active targets in order until one consumes the event, then the default
  // target. 1 if consumed.
  int post(const Event& event);

  bool activate(EventTarget* target);    // to the head of the list; false when it is there already
  bool deactivate(EventTarget* target);  // false when it isn't on the list
  void setDefault(EventTarget* target);  // or null
  EventTarget* defaultTarget() const { return fallback; }

  // Takes the target off the active list and frees its observers and handlers.
  void destroyLists(EventTarget* target);

 private:
  EventTarget* active = nullptr;  // the head of the list
  EventTarget* fallback = nullptr;
};

EventTargets& currentTargets();  // of the engine that is current on this thread

// Global delivery.
int eventPost(const Event& event);
int eventPostSimple(uint32_t code, uint32_t data, uint32_t data2);

// Delivery to one target: its handler of that code, then its handleEvent. 0 for a target that has gone.
int eventSend(EventTarget* target, const Event& event);
int eventSendSimple(EventTarget* target, uint32_t code, uint32_t data, EventPointer pointer = {});

// False when the handler is chained already, or (handlerAdd) when the target has a handler of its code.
bool observerAdd(EventTarget* target, EventHandler* handler);
bool handlerAdd(EventTarget* target, EventHandler* handler);
bool handlerRemove(EventHandler* handler);  // false when it wasn't chained

bool targetActivate(EventTarget* target);
bool targetDeactivate(EventTarget* target);
void defaultTargetSet(EventTarget* target);
EventTarget* defaultTarget();
void targetDestroyLists(EventTarget* target);
