#include "engine/events/eventtarget.h"

#include <memory>
#include <utility>

#include "engine/events/eventtrail.h"
#include "engine/events/graveyard.h"
#include "host/host.h"

namespace {

void chain(EventHandler** head, EventHandler* handler) {
  handler->next = *head;
  handler->owner = head;
  if (*head) (*head)->owner = &handler->next;
  *head = handler;
}

EventHandler* findCode(EventHandler* handler, uint32_t code) {
  while (handler && handler->code != code) handler = handler->next;
  return handler;
}

// An observer may unchain any other, itself included; the walk ends at one that is no longer chained.
void callObservers(EventTarget* target, const Event& event) {
  for (EventHandler* observer = target->observers; observer; observer = observer->owner ? observer->next : nullptr)
    if (observer->code == event.code) observer->fn(&event);
}

bool isActive(const EventTarget* target) { return target->targetFlags & kTargetActive; }

EventTarget* nextActive(const EventTarget* target) { return isActive(target) ? target->nextActive : nullptr; }

void destroyHandlers(EventHandler*& head) {
  while (EventHandler* handler = head) {
    handlerRemove(handler);
    handler->fn(nullptr);
    bury(std::unique_ptr<EventHandler>(handler));
  }
}

}  // namespace

int EventTarget::handleEvent(const Event* event) {
  if (!event) return 1;
  return parent && !parent->gone ? parent->handleEvent(event) : 0;
}

int EventTargets::post(const Event& event) {
  EngineCall call;
  if (observerListens()) return 0;
  const EventTrail trail(event, true);
  for (EventTarget* target = active; target; target = nextActive(target)) callObservers(target, event);
  for (EventTarget* target = active; target; target = nextActive(target))
    if (eventSend(target, event)) return 1;
  return fallback && eventSend(fallback, event) ? 1 : 0;
}

bool EventTargets::activate(EventTarget* target) {
  if (isActive(target) || target->gone) return false;
  target->targetFlags |= kTargetActive;
  target->nextActive = active;
  active = target;
  return true;
}

bool EventTargets::deactivate(EventTarget* target) {
  if (!isActive(target)) return false;
  EventTarget** link = &active;
  while (*link != target) link = &(*link)->nextActive;
  *link = target->nextActive;
  target->targetFlags &= ~kTargetActive;
  target->handleEvent(nullptr);
  return true;
}

void EventTargets::setDefault(EventTarget* target) {
  if (EventTarget* old = std::exchange(fallback, nullptr)) old->handleEvent(nullptr);
  fallback = target;
}

void EventTargets::destroyLists(EventTarget* target) {
  deactivate(target);
  if (target->gone && fallback == target) fallback = nullptr;
  destroyHandlers(target->observers);
  destroyHandlers(target->handlers);
}

int eventPost(const Event& event) { return currentTargets().post(event); }

int eventPostSimple(uint32_t code, uint32_t data, uint32_t data2) {
  return eventPost({kEventSize, hostMilliseconds(), code >> 16, code, 0, data, data2});
}

int eventSend(EventTarget* target, const Event& event) {
  EngineCall call;
  if (target->gone || engineStackSpent()) return 0;
  EngineObserver* observer = currentObserver();
  if (observer && notesOf(*observer).reporting) return 0;
  EventTrail* trail = observer ? EventTrail::find(*observer, event) : nullptr;
  if (trail) trail->seen.push_back(target->id);
  if (EventHandler* handler = findCode(target->handlers, event.code)) {
    if (handler->fn(&event)) {
      if (trail) trail->consumed(target->id, true);
      return 1;
    }
    if (target->gone) return 0;
  }
  const int answer = target->handleEvent(&event);
  if (trail && answer) trail->consumed(target->id, false);
  return answer;
}

int eventSendSimple(EventTarget* target, uint32_t code, uint32_t data, EventPointer pointer) {
  return eventSend(target, {0, 0, code >> 16, code, 0, data, 0, pointer});
}

bool observerAdd(EventTarget* target, EventHandler* handler) {
  if (handler->owner || target->gone) return false;
  chain(&target->observers, handler);
  return true;
}

bool handlerAdd(EventTarget* target, EventHandler* handler) {
  if (handler->owner || target->gone || findCode(target->handlers, handler->code)) return false;
  chain(&target->handlers, handler);
  return true;
}

bool handlerRemove(EventHandler* handler) {
  if (!handler->owner) return false;
  *handler->owner = handler->next;
  if (handler->next) handler->next->owner = handler->owner;
  handler->owner = nullptr;
  handler->next = nullptr;
  return true;
}

bool targetActivate(EventTarget* target) { return currentTargets().activate(target); }
bool targetDeactivate(EventTarget* target) { return currentTargets().deactivate(target); }
void defaultTargetSet(EventTarget* target) { currentTargets().setDefault(target); }
EventTarget* defaultTarget() { return currentTargets().defaultTarget(); }
void targetDestroyLists(EventTarget* target) { currentTargets().destroyLists(target); }
