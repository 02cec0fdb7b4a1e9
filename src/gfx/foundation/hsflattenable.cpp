#include "gfx/foundation/hsflattenable.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfixed.h"

int32_t hsFlattenable::Flatten(void*) const { return 0; }

hsGSizedFlattenable::hsGSizedFlattenable(const void** cursor, int32_t currentSize) : fStdSize(0) {
  if (!hsAssert(cursor && *cursor, "need storage buffer")) return;
  std::memcpy(&fStdSize, *cursor, sizeof fStdSize);
  *cursor = static_cast<const char*>(*cursor) + sizeof fStdSize;
  if (!hsAssert(fStdSize >= 0, "bad stdsize")) fStdSize = 0;
  if (fStdSize != 0 && currentSize >= 1) fScale = hsFixDiv(currentSize, fStdSize);
}

int32_t hsGSizedFlattenable::Flatten(void* buffer) const {
  if (buffer) std::memcpy(buffer, &fStdSize, sizeof fStdSize);
  return sizeof fStdSize;
}
