// The redraw queue: what wants to be drawn, in the order in which it first asked.
#pragma once

#include <cstdint>

// What can wait in the queue: a widget.
struct Redrawable {
  virtual void redraw() = 0;  // draws what has been asked for; the object has left the queue

  uint64_t drawnAs = 0;  // the how manieth of all redraws the last one was; 0 for none yet
  Redrawable* nextDirty = nullptr;
  Redrawable** dirtyLink = nullptr;  // the link of the queue that points here; null outside the queue

 protected:
  ~Redrawable() = default;
};

class RedrawQueue {
 public:
  void add(Redrawable* thing);     // unless it waits already
  void remove(Redrawable* thing);  // if it waits
  bool pending() const { return head != nullptr; }

  // Redraws everything that waits, what joins meanwhile included.
  void drain();

  uint64_t nextRedraw() { return ++redraws; }  // its number

 private:
  Redrawable* head = nullptr;
  Redrawable** tail = &head;
  uint64_t redraws = 0;
};

RedrawQueue& currentRedraws();  // of the engine that is current on this thread
