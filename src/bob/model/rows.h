// Rows of static tables that fill classes with native members; a null name ends a table. They must outlive the
// interpreter. In the arena a row is a CMethod or a VPMethod.
#pragma once

#include "bob/base/value.h"

// A native method gets the interpreter alone and reads its arguments with bobParse (model/signature.h).
using BobNative = BobValue (*)(BobInterp*);

struct BobMethodRow {
  const char* name;
  BobNative function;
};
struct BobPropertyRow {
  const char* name;
  BobValue (*getter)(BobInterp*, BobValue object);              // null: write-only
  void (*setter)(BobInterp*, BobValue object, BobValue value);  // null: read-only
};
