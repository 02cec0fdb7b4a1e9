#include "gfx/foundation/hsstringstorage.h"

#include <cstring>

bool hsStringStorage::Find(const char* name, int32_t* index) const {
  for (int32_t i = 0; i < fNames.Count(); ++i) {
    if (std::strcmp(fNames[i], name) != 0) continue;
    if (index) *index = i;
    return true;
  }
  return false;
}

void hsStringStorage::Add(const char* name) {
  if (!hsAssert(!Find(name), "name already in string storage")) return;
  fNames.Push(static_cast<const char*>(fCharacters.Allocate(int32_t(std::strlen(name)) + 1, name)));
}
