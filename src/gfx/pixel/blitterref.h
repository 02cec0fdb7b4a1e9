// A blitter held for the length of a draw.
#pragma once

#include "gfx/vector/hsgblitter.h"

class hsGBlitterRef {
 public:
  explicit hsGBlitterRef(hsGBlitter* owned) : fBlitter(owned) {}  // takes over the caller's reference
  ~hsGBlitterRef() noexcept(false) {
    if (fBlitter) fBlitter->UnRef();
  }
  hsGBlitterRef(const hsGBlitterRef&) = delete;
  hsGBlitterRef& operator=(const hsGBlitterRef&) = delete;

  operator hsGBlitter*() const { return fBlitter; }
  hsGBlitter* operator->() const { return fBlitter; }

 private:
  hsGBlitter* fBlitter;
};
