// Readers of picture files. Each puts the picture into the cache under the name; a handle, or 0, after logging why.
#pragma once

#include "engine/images/imagecache.h"

HeapHandle kpxRead(ImageCache& images, const char* name);
HeapHandle gifRead(ImageCache& images, const char* name);
