// A bitmap as a paint: tiled over the plane or alone, under a matrix, filtered or not.
//
// Several workers share the task. Those that are fast for the common cases keep small differences from the general
// ones: the palette worker that clamps takes an entry's own alpha and scales it by the paint's, the others put the
// paint's alpha in its place.
#pragma once

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgshader.h"

class hsGBitmapShader : public hsGShader {
 public:
  enum TileMode : uint8_t {
    kTile_Clamp = 0,   // the edge pixels go on for ever
    kTile_Repeat = 1,  // copies side by side
    kTile_Mirror = 2,  // every other copy is turned round
    kTile_None = 3,    // nothing outside
  };

  // The worker for a source of 32 bits or a palette under that paint and matrix; null, after "missing
  // bitmap-core-shader", for any other. It needs its context before it can shade. The caller holds a reference.
  static hsGBitmapShader* Create(const hsGBitmap& source, const hsGAttribute& attr, const hsMatrix& matrix,
                                 TileMode tileMode);

  // Another source of the same depth; "bm is nil".
  void SetBitmap(const hsGBitmap* bitmap) override;
  // "cannot invert matrix" when device matrix times local matrix has no inverse; then rows are left as they are.
  void SetContext(const hsGBitmap& device, const hsGAttribute& attr, const hsMatrix& matrix) override;
  bool IsOpaque() const override { return fOpaque; }
  void ShadeRow(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) final;

 protected:
  static constexpr uint32_t kNoInverse = 0x80;

  hsGBitmapShader(const hsGBitmap& source, TileMode tileMode, uint8_t pixelSize);
  virtual void Shade(int32_t y, int32_t x, int32_t count, hsGColor32 colors[]) = 0;

  hsMatrix fInverse;                   // device to source
  uint32_t fInverseType = kNoInverse;  // its type
  hsGBitmap fSource;
  bool fDoFilter = false;
  bool fHasAlpha;
  bool fOpaque = false;
  uint8_t fAlpha = 0xFF;  // the paint's
  TileMode fTileMode;

 private:
  uint8_t fReads;  // bits of the pixels that the worker reads
};
