#include "engine/images/imagecache.h"

#include <cstring>
#include <utility>

#include "engine/base/log.h"
#include "engine/base/watch.h"
#include "gfx/foundation/hsascii.h"
#include "host/host.h"

namespace {

void relocate(uint8_t* payload, int32_t distance) {
  auto* moved = reinterpret_cast<CachedImage*>(payload);
  moved->name += uint32_t(distance);
  moved->pixels += uint32_t(distance);
}

constexpr size_t kMostRefused = 64;

uint64_t payloadSize(uint64_t pixels, size_t nameLength) { return pixels + nameLength + sizeof(CachedImage) + 1; }

}  // namespace

uint64_t imageMemory(uint64_t pixels, size_t nameLength) {
  return HandleHeap::blockSize(payloadSize(pixels, nameLength));
}

size_t imageMemoryLimit() { return HandleHeap::space(kImageCacheSize); }

void ImageCache::init(void* memory, size_t size) {
  lruHead = lruTail = 0;
  cluts.clear();
  if (!heap.init(memory, size) && logVerbose) hostLog("Error allocating image cache\n");
}

Clut* ImageCache::clut(const CachedImage& image) const { return image.clut ? cluts[image.clut - 1].clut : nullptr; }

void ImageCache::dump() const {
  for (HeapHandle h = lruHead; h; h = image(h).nextLru)
    hostLog("%s %dx%d\n", nameOf(image(h)), int(image(h).width), int(image(h).height));
}

// ---- the list, and finding in it

const char* ImageCache::nameOf(const CachedImage& image) const {
  return reinterpret_cast<const char*>(heap.at(image.name));
}

HeapHandle ImageCache::find(const char* name) const {
  for (HeapHandle h = lruHead; h; h = image(h).nextLru)
    if (hsAsciiEqualIgnoringCase(nameOf(image(h)), name)) return h;
  return 0;
}

void ImageCache::append(HeapHandle handle) {
  image(handle).nextLru = 0;
  (lruTail ? image(lruTail).nextLru : lruHead) = handle;
  lruTail = handle;
}

void ImageCache::unlink(HeapHandle handle) {
  HeapHandle previous = 0;
  for (HeapHandle h = lruHead; h; previous = h, h = image(h).nextLru) {
    if (h != handle) continue;
    (previous ? image(previous).nextLru : lruHead) = image(h).nextLru;
    if (lruTail == h) lruTail = previous;
    return;
  }
}

void ImageCache::touch(HeapHandle handle) {
  unlink(handle);
  append(handle);
}

void ImageCache::evict(int64_t need) {
  for (int64_t left = need; left >= 1 && lruHead;) {
    left -= image(lruHead).totalSize;
    if (const ObserverReport report; report) report->imageThrownOut(nameOf(image(lruHead)), image(lruHead).totalSize);
    free(lruHead);
  }
}

// ---- for who looks

std::vector<ImageCache::Entry> ImageCache::entries() const {
  std::vector<Entry> list;
  for (HeapHandle h = lruHead; h; h = image(h).nextLru)
    list.push_back({nameOf(image(h)), &image(h), heap.offsetOf(heap.payload(h))});
  return list;
}

ImageRefusal ImageCache::refusalOf(const char* name) const {
  for (const Refused& r : refused)
    if (hsAsciiEqualIgnoringCase(r.name.c_str(), name)) return r.reason;
  return ImageRefusal::none;
}

void ImageCache::noteAsked(const char* name, bool found) {
  const ImageRefusal reason = std::exchange(refusal, ImageRefusal::none);
  if (found && refused.empty()) return;
  refused.remove_if([name](const Refused& r) { return hsAsciiEqualIgnoringCase(r.name.c_str(), name); });
  if (found) return;
  refused.push_front({name, reason});
  if (refused.size() > kMostRefused) refused.pop_back();
}

// ---- allocating

HeapHandle ImageCache::place(const char* name, uint64_t pixelBytes) {
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
      refuse(ImageRefusal::tooBig);
      return 0;
    }
    evict(int64_t(need));
  }
}

HeapHandle ImageCache::allocate(const char* name, uint32_t width, uint32_t height) {
  const HeapHandle handle = place(name, uint64_t{width} * height);
  if (!handle) return 0;
  image(handle).width = image(handle).rowBytes = width;
  image(handle).height = height;
  return handle;
}

void ImageCache::setClut(HeapHandle handle, Clut* shared) {
  size_t number = 0;
  while (number < cluts.size() && cluts[number].clut) ++number;
  if (number == cluts.size()) cluts.emplace_back();
  cluts[number].clut = shared;
  image(handle).clut = uint32_t(number + 1);
}

void ImageCache::setClut(HeapHandle handle, std::unique_ptr<Clut> own) {
  setClut(handle, own.get());
  cluts[image(handle).clut - 1].own = std::move(own);
}

void ImageCache::free(HeapHandle handle) {
  unlink(handle);
  if (const uint32_t number = image(handle).clut) cluts[number - 1] = {};
  heap.heapFree(handle);
}

void imageCacheInit(void* memory, size_t size) { currentImages().init(memory, size); }
void imageCacheDump() { currentImages().dump(); }
