#include "engine/events/eventtrail.h"

EventTrail::EventTrail(const Event& e, bool p) : observer(currentObserver()), event(e), posted(p) {
  if (!observer) return;
  outer = notesOf(*observer).trail;
  notesOf(*observer).trail = this;
  if (const ObserverReport report; report) report->eventBegun(event.code, event.data, posted);
}

EventTrail::~EventTrail() {
  if (!observer) return;
  notesOf(*observer).trail = outer;
  reportEnd([this](EngineObserver& o) {
    o.eventDelivered({event.code, event.data, event.data2, posted, seen, consumer, byHandler});
  });
}

EventTrail* EventTrail::find(EngineObserver& observer, const Event& event) {
  EventTrail* trail = notesOf(observer).trail;
  while (trail && &trail->event != &event) trail = trail->outer;
  return trail;
}
