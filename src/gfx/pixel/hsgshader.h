// Shaders: a paint whose colour depends on the place.
#pragma once

#include "gfx/foundation/hsflattenable.h"
#include "gfx/foundation/hsmatrix.h"
#include "gfx/pixel/hsgcolor.h"

class hsGAttribute;
class hsGBitmap;

class hsGShader : public hsGSizedFlattenable {
 public:
  hsGShader() = default;
  explicit hsGShader(int32_t stdSize) : hsGSizedFlattenable(stdSize) {}
  // Both with the local matrix.
  hsGShader(const void** cursor, int32_t currentSize);
  explicit hsGShader(const hsMeta& meta);
  int32_t Flatten(void* buffer) const override;
  void Describe(hsMeta* meta, hsMeta* writer) const override;

  // Tells the device, paint and total matrix of the draws to come; before every one of them.
  virtual void SetContext(const hsGBitmap&, const hsGAttribute&, const hsMatrix&) {}
  // Whether every colour will have full alpha.
  virtual bool IsOpaque() const { return false; }
  // The premultiplied colours of count pixels from (x, y) on, in device pixels.
  virtual void ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) = 0;
  // Their alphas alone.
  virtual void ShadeAlphaRow(int32_t y, int32_t x, int32_t count, uint8_t bytes[]);
  virtual void SetBitmap(const hsGBitmap*) {}

  const hsMatrix& LocalMatrix() const { return fLocalMatrix; }
  void SetLocalMatrix(const hsMatrix* matrix) { fLocalMatrix = matrix ? *matrix : hsMatrix(); }

 protected:
  hsMatrix fLocalMatrix;  // shader to user space
};
