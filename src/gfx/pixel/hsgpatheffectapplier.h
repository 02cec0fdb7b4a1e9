// Draws through a path effect: takes it off the paint for a scope, so that what is drawn meanwhile doesn't meet it
// again, and sets the paint up for the path that the effect makes.
#pragma once

#include "gfx/foundation/hsref.h"
#include "gfx/vector/hspath.h"

class hsGAttribute;
class hsGPathEffect;
class hsMatrix;

class hsGPathEffectApplier {
 public:
  // The paint must have an effect, "nil effect". matrix goes to the effect.
  hsGPathEffectApplier(const hsMatrix* matrix, hsGAttribute* attr);
  // The paint is again as it was.
  ~hsGPathEffectApplier();
  hsGPathEffectApplier(const hsGPathEffectApplier&) = delete;
  hsGPathEffectApplier& operator=(const hsGPathEffectApplier&) = delete;

  // False when the effect leaves the path as it is. Otherwise Path() is to be drawn in its place, with the paint's
  // frame flag and frame size as the effect wants them.
  bool Apply(const hsPath& path);
  const hsPath& Path() const { return fPath; }

 private:
  const hsMatrix* fMatrix;
  hsRef<hsGAttribute> fAttr;
  hsRef<hsGPathEffect> fEffect;
  uint32_t fFlags;
  hsFixed fFrameSize;
  hsPath fPath;
};
