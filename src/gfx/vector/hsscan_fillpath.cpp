#include "gfx/vector/hsscan_fillpath.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsscan.h"

void HSScan::FillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter) {
  hsThrowIfNilParam(path);
  hsThrowIfNilParam(blitter);
  hsFillScaledPath(*path, 1, clip, blitter);
}
