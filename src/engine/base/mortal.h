// What may still be in use further up the stack when it goes, and is then buried (events/graveyard.h).
#pragma once

struct Mortal {
  virtual ~Mortal() = default;

  Mortal* nextGrave = nullptr;  // so that a burial needs no memory
};
