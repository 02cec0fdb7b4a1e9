#include "engine/imagecache.h"

#include <cstring>
#include <string>
#include <vector>

#include "engine/ascii.h"
#include "engine/clut.h"
#include "engine/core.h"
#include "engine/handleheap.h"
#include "engine/imagefiles.h"
#include "host/host.h"

namespace {

constexpr size_t kNameBuffer = 136;  // a replaced extension is written into so many bytes, the end included

HandleHeap heap;
HeapHandle lruHead = 0, lruTail = 0;  // the head was used longest ago
std::vector<Clut*> cluts;             // by the number in an image, less 1; null where free

CachedImage& image(HeapHandle handle) { return *reinterpret_cast<CachedImage*>(heap.payload(handle)); }
const char* nameOf(const CachedImage& image) { return reinterpret_cast<const char*>(heap.at(image.name)); }

void relocate(uint8_t* payload, int32_t distance) {
  auto* moved = reinterpret_cast<CachedImage*>(payload);
  moved->name += uint32_t(distance);
  moved->pixels += uint32_t(distance);
}

void append(HeapHandle handle) {
  image(handle).nextLru = 0;
  (lruTail ? image(lruTail).nextLru : lruHead) = handle;
  lruTail = handle;
}

void unlink(HeapHandle handle) {
  HeapHandle previous = 0;
  for (HeapHandle h = lruHead; h; previous = h, h = image(h).nextLru) {
    if (h != handle) continue;
    (previous ? image(previous).nextLru : lruHead) = image(h).nextLru;
    if (lruTail == h) lruTail = previous;
    return;
  }
}

HeapHandle find(const char* name) {
  for (HeapHandle h = lruHead; h; h = image(h).nextLru)
    if (asciiEqualIgnoringCase(nameOf(image(h)), name)) return h;
  return 0;
}

void evict(int64_t need) {
  for (int64_t left = need; left >= 1 && lruHead;) {
    left -= image(lruHead).totalSize;
    imageFree(lruHead);
  }
}

uint64_t payloadSize(uint64_t pixels, size_t nameLength) { return pixels + nameLength + sizeof(CachedImage) + 1; }

HeapHandle place(const char* name, uint64_t pixelBytes) {
  const size_t nameLength = std::strlen(name);
  const uint64_t need = payloadSize(pixelBytes, nameLength);
  for (;;) {
    if (const HeapHandle handle = heap.heapAlloc(relocate, need)) {
      uint8_t* payload = heap.payload(handle);
      std::memset(payload, 0, sizeof(CachedImage) + size_t(pixelBytes));
      CachedImage& made = image(handle);
      made.pixels = heap.offsetOf(payload) + sizeof(CachedImage);
      made.totalSize = uint32_t(need);
      made.name = made.pixels + uint32_t(pixelBytes);
      std::memcpy(heap.at(made.name), name, nameLength + 1);
      append(handle);
      return handle;
    }
    if (!lruHead) {
      if (logVerbose) hostLog("Image '%s' too big for image cache\n", name);
      return 0;
    }
    evict(int64_t(need));
  }
}

HeapHandle load(const char* name) {
  const char* dot = std::strrchr(name, '.');
  if (!dot) return kpxRead(name);
  if (asciiEqualIgnoringCase(dot, ".gif")) return gifRead(name);
  if (asciiEqualIgnoringCase(dot, ".kpx")) return kpxRead(name);
  // The picture is kept under the name of the file, so the next look for this name reads it again.
  const std::string file = std::string(name, dot) + ".kpx";
  return kpxRead(file.substr(0, kNameBuffer - 1).c_str());
}

}  // namespace

uint64_t imageMemory(uint64_t pixels, size_t nameLength) {
  return HandleHeap::blockSize(payloadSize(pixels, nameLength));
}

size_t imageMemoryLimit() { return HandleHeap::room(kImageCacheSize); }

void imageCacheInit(void* memory, size_t size) {
  lruHead = lruTail = 0;
  if (!heap.init(memory, size) && logVerbose) hostLog("Error allocating image cache\n");
}

void imageCacheFree() {
  while (lruHead) imageFree(lruHead);
  cluts.clear();
  heap = {};
}

CachedImage* imageGet(const char* name) {
  HeapHandle handle = find(name);
  if (handle) {
    unlink(handle);
    append(handle);
  } else {
    hostLog("Loading image '%s'\n", name);
    handle = load(name);
  }
  return handle ? &image(handle) : nullptr;
}

bool imagePreload(const char* name) { return imageGet(name) != nullptr; }

const uint8_t* imagePixels(const CachedImage& image) { return heap.at(image.pixels); }

Clut* imageClut(const CachedImage& image) { return image.clut ? cluts[image.clut - 1] : nullptr; }

void imageCacheDump() {
  for (HeapHandle h = lruHead; h; h = image(h).nextLru)
    hostLog("%s %dx%d\n", nameOf(image(h)), int(image(h).width), int(image(h).height));
}

uint32_t imageAllocate(const char* name, uint32_t width, uint32_t height) {
  const HeapHandle handle = place(name, uint64_t{width} * height);
  if (!handle) return 0;
  image(handle).width = image(handle).rowBytes = width;
  image(handle).height = height;
  return handle;
}

CachedImage* imageOf(uint32_t handle) { return &image(handle); }

uint8_t* imageWritablePixels(uint32_t handle) { return heap.at(image(handle).pixels); }

void imageSetClut(uint32_t handle, Clut* clut) {
  size_t number = 0;
  while (number < cluts.size() && cluts[number]) ++number;
  if (number == cluts.size()) cluts.push_back(nullptr);
  cluts[number] = clut;
  image(handle).clut = uint32_t(number + 1);
}

void imageFree(uint32_t handle) {
  unlink(handle);
  if (const uint32_t number = image(handle).clut) {
    Clut*& clut = cluts[number - 1];
    if (clut->name.empty()) delete clut;
    clut = nullptr;
  }
  heap.heapFree(handle);
}
