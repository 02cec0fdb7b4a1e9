// Cached pictures on the screen.
#pragma once

#include "engine/base/bounds.h"

// Draws the picture at rect's corner, from (offsetX, offsetY) in the picture on, cut to rect or tiled over it. A width
// or height of 0 becomes what is left of the picture's. 1 if there is such a picture.
int imageDraw(const char* name, int offsetX, int offsetY, Bounds* rect, bool tile);
