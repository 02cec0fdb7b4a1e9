// Text on the draw core.
#include "gfx/pixel/hsgrawdraw.h"

void hsGRawDraw::DrawText(uint32_t, const void*, hsScalar, hsScalar) { Check(); }

void hsGRawDraw::DrawPosText(uint32_t, const void*, const hsPoint[], const hsPoint[]) { Check(); }

void hsGRawDraw::DrawFastText(uint32_t, const void*, const hsPoint&, bool) { Check(); }
