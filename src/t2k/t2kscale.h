// A scaler's pixel sizes and the transformation that remains after them, as one value that can be set and put back.
#pragma once

#include "gfx/foundation/hsfixed.h"
#include "t2k/t2k.h"

struct T2KScale {
  hsFixed t00, t01, t10, t11;
  bool is_Identity;
  int xPixelsPerEm, yPixelsPerEm;
  hsFixed xPixelsPerEm16Dot16, yPixelsPerEm16Dot16;
  hsFixed xMul, yMul;
};

// What a matrix with the point size in it means for a font at so many dots an inch. Below half a pixel an em the
// transformation is all zeros. Throws tsiError.
T2KScale ScaleFromMatrix(const T2K* t, int xRes, int yRes, const T2KMatrix& matrix);

T2KScale CurrentScale(const T2K* t);
void SetScale(T2K* t, const T2KScale& scale);

// Makes the hinter if there is none and sets it for the current sizes. Throws tsiError.
void PrepareHinter(T2K* t);

// Frees what the purge level says; for use inside the engine.
void Purge(T2K* t, int level);
