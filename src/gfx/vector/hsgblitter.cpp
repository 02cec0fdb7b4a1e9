#include "gfx/vector/hsgblitter.h"

#include "gfx/foundation/hsdebug.h"

void hsGBlitter::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(height > 0, "bad height")) return;
  for (; height > 0; --height) BlitH(y++, x, width);
}

const hsGBitmap* hsGBlitter::GetDirectTarget(uint32_t*) { return nullptr; }

bool hsGBlitter::Reuse(const hsGBitmap&, const hsGAttribute&, int32_t) { return false; }
