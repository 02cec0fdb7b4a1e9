// Effects with a text size, which also describe themselves in a meta.
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsfixed.h"
#include "gfx/foundation/hsflattenable.h"
#include "gfx/vector/hsmeta.h"

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

hsGSizedFlattenable::hsGSizedFlattenable(const hsMeta& meta) : fStdSize(0) {
  if (!meta.GetBounded("stdSize", &fStdSize) || fStdSize < 0) fStdSize = 0;
}

void hsGSizedFlattenable::Describe(hsMeta* meta, hsMeta* writer) const {
  if (meta) meta->AddBounded("stdSize", 0, 0, INT32_MAX);
  if (writer && fStdSize > 0) writer->AddBounded("stdSize", fStdSize, 0, INT32_MAX);
}
