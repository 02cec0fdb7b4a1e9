// Pictures by name, decoded once and kept in one fixed block of memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/target.h"

void imageCacheInit(void* memory, size_t size);

// Draws the picture at rect's corner, from (offsetX, offsetY) in the picture on, cut to rect or tiled over it. A width
// or height of 0 becomes what is left of the picture's. 1 if there is such a picture.
int imageDraw(const char* name, int offsetX, int offsetY, Bounds* rect, bool tile);
