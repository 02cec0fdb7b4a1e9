// Path effects: a path becomes another before it is drawn, dashes for one.
#pragma once

#include "gfx/foundation/hsflattenable.h"

class hsMatrix;
class hsPath;

class hsGPathEffect : public hsGSizedFlattenable {
 public:
  using hsGSizedFlattenable::hsGSizedFlattenable;

  // Adds to dst what is to be drawn in place of src. strokeWidth is the width of the stroke to come, below 0 for a
  // fill; the effect may change either into the other. False when it has nothing to say and src is drawn as it is.
  virtual bool FilterPath(const hsMatrix* matrix, hsScalar* strokeWidth, const hsPath* src, hsPath* dst) const = 0;
  // Whether text is to be drawn as paths, so that the effect sees it too.
  virtual bool DrawsTextAsPaths() const { return false; }
};
