// The way of one event through its targets, for an observer. Nothing is kept when nobody looks.
#pragma once

#include <vector>

#include "engine/base/watch.h"
#include "engine/events/event.h"

struct EventTrail {
  // Tells that the event is on its way, and at the end of the scope what became of it.
  EventTrail(const Event& event, bool posted);
  ~EventTrail();
  EventTrail(const EventTrail&) = delete;
  EventTrail& operator=(const EventTrail&) = delete;

  // The trail of this very event; null when nobody looks, and for what the engine's parts ask each other.
  static EventTrail* of(const Event& event) {
    EngineObserver* observer = currentObserver();
    return observer ? find(*observer, event) : nullptr;
  }
  static EventTrail* find(EngineObserver& observer, const Event& event);

  // The innermost target that took the event is the one that consumed it.
  void consumed(WidgetId target, bool handler) {
    if (consumer) return;
    consumer = target;
    byHandler = handler;
  }

  EngineObserver* const observer;
  const Event& event;
  const bool posted;
  EventTrail* outer = nullptr;
  std::vector<WidgetId> seen;
  WidgetId consumer = 0;
  bool byHandler = false;
};
