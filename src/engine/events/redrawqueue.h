// The redraw queue: what wants to be drawn, in the order in which it first asked.
#pragma once

// What can wait in the queue: a widget.
struct Redrawable {
  virtual void redraw() = 0;  // draws what has been asked for; the object has left the queue

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

 private:
  Redrawable* head = nullptr;
  Redrawable** tail = &head;
};

RedrawQueue& currentRedraws();  // of the engine that is current on this thread
