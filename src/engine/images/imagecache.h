// Pictures by name, decoded once and kept in one fixed block of memory; the one that was used longest ago goes first.
//
// Pictures are 8-bit indices of a colour table of their own, or of the screen's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/observer.h"
#include "engine/images/handleheap.h"
#include "engine/screen/clut.h"

// A picture in the cache. Its offsets lead into the block, so they hold until the next picture is loaded.
struct CachedImage {
  uint32_t name;       // offset of the zero-terminated name, after the pixels
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

class ImageCache {
 public:
  ImageCache() = default;
  ImageCache(const ImageCache&) = delete;
  ImageCache& operator=(const ImageCache&) = delete;

  // Starts empty in a block that stays as long as the cache; one that is too small is logged and holds nothing.
  void init(void* memory, size_t size);

  HeapHandle find(const char* name) const;  // 0 when it isn't there
  void touch(HeapHandle handle);            // as the one used last
  const uint8_t* pixels(const CachedImage& image) const { return heap.at(image.pixels); }
  Clut* clut(const CachedImage& image) const;  // or null
  void dump() const;                           // logs name and size of each

  // ---- for who looks

  struct Entry {
    const char* name;
    const CachedImage* image;
    uint32_t offset;  // of the picture in the block
  };
  std::vector<Entry> entries() const;  // the one used longest ago first
  HandleHeap::Extent extent() const { return heap.extent(); }

  // Why the picture of that name could not be read when it was last asked for; of the latest 64 such names.
  ImageRefusal refusalOf(const char* name) const;
  void noteAsked(const char* name, bool found);  // for imageGet: what the reader refused with, or that it is there

  // ---- for readers of picture files

  // Space for a picture of that size, its pixels zero, under a name; whatever is in the way is evicted. A handle, or 0
  // when it would not fit the empty cache.
  HeapHandle allocate(const char* name, uint32_t width, uint32_t height);
  CachedImage& image(HeapHandle handle) const { return *reinterpret_cast<CachedImage*>(heap.payload(handle)); }
  uint8_t* writablePixels(HeapHandle handle) const { return heap.at(image(handle).pixels); }
  void setClut(HeapHandle handle, Clut* shared);
  void setClut(HeapHandle handle, std::unique_ptr<Clut> own);
  void free(HeapHandle handle);

  // Why the picture under way can't be read, the first reason being the one that counts.
  void refuse(ImageRefusal reason) {
    if (refusal == ImageRefusal::none) refusal = reason;
  }

 private:
  struct ClutSlot {
    Clut* clut = nullptr;       // null where free
    std::unique_ptr<Clut> own;  // the same, where it belongs to the picture
  };

  const char* nameOf(const CachedImage& image) const;
  HeapHandle place(const char* name, uint64_t pixelBytes);
  void evict(int64_t need);
  void append(HeapHandle handle);
  void unlink(HeapHandle handle);

  HandleHeap heap;
  HeapHandle lruHead = 0, lruTail = 0;  // the head was used longest ago
  std::vector<ClutSlot> cluts;          // by the number in an image, less 1

  struct Refused {
    std::string name;
    ImageRefusal reason;
  };
  std::list<Refused> refused;  // the latest first
  ImageRefusal refusal = ImageRefusal::none;
};

ImageCache& currentImages();  // of the engine that is current on this thread

void imageCacheInit(void* memory, size_t size);
void imageCacheDump();
