// Pictures by the names of their files, from the cache or read into it.
#pragma once

#include "engine/images/imagecache.h"

// Null, after logging why, when the picture can't be read.
CachedImage* imageGet(const char* name);

// For what will be drawn later; false when the picture can't be read.
bool imagePreload(const char* name);
