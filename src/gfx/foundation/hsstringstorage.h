// A set of names, numbered in the order of their coming.
#pragma once

#include "gfx/foundation/hschunkallocator.h"
#include "gfx/foundation/hstarray.h"

class hsStringStorage {
 public:
  int32_t Count() const { return fNames.Count(); }
  const char* Get(int32_t index) const { return fNames.Get(index); }

  // Sets index, unless that is null, when the name is there.
  bool Find(const char* name, int32_t* index = nullptr) const;
  // Copies the name in. One that is there already is reported and not added again.
  void Add(const char* name);

 private:
  hsTArray<const char*> fNames;
  hsChunkAllocator fCharacters{256};
};
