// A value that the collector knows, and follows when it moves, for as long as the variable is in scope.
#pragma once

#include "bob/base/value.h"

// GCC takes the list of locals for a leak of their addresses; each takes itself off again.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif
struct BobLocal {
  BobLocal(BobInterp* interp, BobValue value = kBobNil);
  // The same for the language's own files, inline: the list is the interpreter's `locals`.
  BobLocal(BobLocal*& list, BobValue value) : value(value), list(&list), next(list) { list = this; }
  ~BobLocal() { *list = next; }
  BobLocal(const BobLocal&) = delete;
  BobLocal& operator=(const BobLocal&) = delete;
  operator BobValue() const { return value; }

  BobValue value;
  BobLocal** list;
  BobLocal* next;
};
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
