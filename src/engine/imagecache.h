// Pictures by name, decoded once and kept in one fixed block of memory; the one that was used longest ago goes first.
//
// Pictures are 8-bit indices of a colour table of their own, or of the screen's.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/target.h"

struct Clut;

// A picture in the cache. Its words lead into the block, so they are good until the next picture is loaded.
struct CachedImage {
  uint32_t name;       // offset of the zero-terminated name, behind the pixels
  uint32_t totalSize;  // width x height + length of the name + 33
  uint32_t width;      // pixels
  uint32_t height;     // pixels
  uint32_t rowBytes;   // the width
  uint32_t pixels;     // offset
  uint32_t clut;       // number of its colour table; 0 for none
  uint32_t nextLru;    // handle of the one used next after this
};
static_assert(sizeof(CachedImage) == 32);

inline constexpr size_t kImageCacheSize = 0x80000;  // bytes of the block

// What a picture of so many pixels under a name of that length takes of the block, and the most that one can take.
uint64_t imageMemory(uint64_t pixels, size_t nameLength);
size_t imageMemoryLimit();

void imageCacheInit(void* memory, size_t size);
void imageCacheFree();  // forgets everything, at the end of the engine

// Loads the picture if it isn't there; null, with a word in the log, when it can't be.
CachedImage* imageGet(const char* name);
bool imagePreload(const char* name);
const uint8_t* imagePixels(const CachedImage& image);
Clut* imageClut(const CachedImage& image);  // or null
void imageCacheDump();                      // logs name and size of each

// Draws the picture at rect's corner, from (offsetX, offsetY) in the picture on, cut to rect or tiled over it. A width
// or height of 0 becomes what is left of the picture's. 1 if there is such a picture.
int imageDraw(const char* name, int offsetX, int offsetY, Bounds* rect, bool tile);

// ---- for readers of picture files

// Room for a picture of that size, its pixels zero, under a name; whatever stands in the way is evicted. A handle, or 0
// when it would not fit the empty cache.
uint32_t imageAllocate(const char* name, uint32_t width, uint32_t height);
CachedImage* imageOf(uint32_t handle);
uint8_t* imageWritablePixels(uint32_t handle);
void imageSetClut(uint32_t handle, Clut* clut);  // one without a name becomes the picture's own
void imageFree(uint32_t handle);
