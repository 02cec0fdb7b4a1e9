#include "gfx/pixel/hsgpatheffectapplier.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/vector/hsgpatheffect.h"

namespace {

constexpr hsFixed kFilled = -kFixed1;  // in place of a stroke's width

}  // namespace

hsGPathEffectApplier::hsGPathEffectApplier(const hsMatrix* matrix, hsGAttribute* attr)
    : fMatrix(matrix),
      fAttr(hsShare(attr)),
      fEffect(hsShare(attr->PathEffect())),
      fFlags(attr->Flags()),
      fFrameSize(attr->FrameSize()) {
  (void)hsAssert(fEffect, "nil effect");
  fAttr->SetPathEffect(nullptr);
}

hsGPathEffectApplier::~hsGPathEffectApplier() {
  fAttr->SetPathEffect(fEffect.get());
  fAttr->SetFlags(fFlags);
  fAttr->SetFrameSize(fFrameSize);
}

bool hsGPathEffectApplier::Apply(const hsPath& path) {
  if (!fEffect) return false;
  fPath.Rewind();
  hsScalar strokeWidth = fAttr->Flags() & hsGAttribute::kFrame ? fAttr->FrameSize() : kFilled;
  if (!fEffect->FilterPath(fMatrix, &strokeWidth, &path, &fPath)) return false;
  if (strokeWidth >= 0) {
    fAttr->SetFlags(fAttr->Flags() | hsGAttribute::kFrame);
    fAttr->SetFrameSize(strokeWidth);
  } else {
    fAttr->SetFlags(fAttr->Flags() & ~uint32_t{hsGAttribute::kFrame});
  }
  return true;
}
