// The root of what is shared by reference count.
//
// An object starts with one reference, its maker's, and dies with the last UnRef. It is destroyed while the count
// still reads 1: the destructor takes any other count for an error. Not for threads.
#pragma once

#include <cstdint>

#include "gfx/foundation/hsref.h"

class hsRefCnt {
 public:
  hsRefCnt() = default;
  // A copy is an object of its own, with its own first reference.
  hsRefCnt(const hsRefCnt&) {}
  hsRefCnt& operator=(const hsRefCnt&) { return *this; }
  // Reports "fRefCnt != 1".
  virtual ~hsRefCnt();

  int32_t RefCount() const { return fRefCnt; }
  void Ref() const { ++fRefCnt; }
  // Destroys the object when this was the last reference. A count below 1 fails "throw if false".
  void UnRef() const;

 private:
  mutable int32_t fRefCnt = 1;
};
