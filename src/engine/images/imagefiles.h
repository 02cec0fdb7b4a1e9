// Readers of picture files. Each puts the picture into the cache under the name; a handle, or 0, after logging why.
#pragma once

#include <utility>

#include "engine/images/imagecache.h"

HeapHandle kpxRead(ImageCache& images, const char* name);
HeapHandle gifRead(ImageCache& images, const char* name);

// A picture that is being read. It leaves the cache at the end of the scope unless it is kept.
struct NewImage {
  explicit NewImage(ImageCache& i) : images(i) {}
  ~NewImage() {
    if (handle) images.free(handle);
  }
  NewImage(const NewImage&) = delete;
  NewImage& operator=(const NewImage&) = delete;

  HeapHandle keep() { return std::exchange(handle, 0); }

  ImageCache& images;
  HeapHandle handle = 0;  // 0 until there is a place for it
};
