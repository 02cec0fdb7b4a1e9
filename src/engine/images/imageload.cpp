#include "engine/images/imageload.h"

#include <cstring>
#include <string>

#include "engine/base/watch.h"
#include "engine/images/imagefiles.h"
#include "gfx/foundation/hsascii.h"
#include "host/host.h"

namespace {

constexpr size_t kNameBuffer = 136;  // a replaced extension is written into so many bytes, the end included

HeapHandle read(ImageCache& images, const char* name) {
  const char* dot = std::strrchr(name, '.');
  if (!dot) return kpxRead(images, name);
  if (hsAsciiEqualIgnoringCase(dot, ".gif")) return gifRead(images, name);
  if (hsAsciiEqualIgnoringCase(dot, ".kpx")) return kpxRead(images, name);
  // The picture is kept under the name of the file, so the next look for this name reads it again.
  const std::string file = std::string(name, dot) + ".kpx";
  return kpxRead(images, file.substr(0, kNameBuffer - 1).c_str());
}

}  // namespace

CachedImage* imageGet(const char* name) {
  ImageCache& images = currentImages();
  HeapHandle handle = images.find(name);
  if (handle) {
    images.touch(handle);
  } else {
    hostLog("Loading image '%s'\n", name);
    handle = read(images, name);
    images.noteAsked(name, handle != 0);
    if (const ObserverReport report; report) {
      const CachedImage* image = handle ? &images.image(handle) : nullptr;
      if (image) report->imageLoaded(name, image->width, image->height, image->totalSize);
      if (!image) report->imageRefused(name, images.refusalOf(name));
    }
  }
  return handle ? &images.image(handle) : nullptr;
}

bool imagePreload(const char* name) { return imageGet(name) != nullptr; }
