// What the player's limited memories hold.
#include "bob/bob.h"
#include "engine/engine.h"
#include "engine/inspect.h"
#include "gfx/text/hsgglyphcache.h"

HeapView inspectHeap(Engine& engine) {
  const EngineScope here(engine);
  const BobInterp* interp = scriptInterp();
  if (!interp) return {};
  const BobMemory memory = bobMemory(interp);
  return {memory.spaceBytes,  memory.heapBytes,   memory.stackWords, memory.stackUsed,
          memory.collections, memory.nativeBytes, memory.handles};
}

ImageCacheView inspectImageCache(Engine& engine) {
  const HandleHeap::Extent extent = engine.images.extent();
  ImageCacheView view{extent.size, extent.table, extent.size - extent.table - extent.blocks, {}};
  if (extent.size == 0) return view;
  for (const ImageCache::Entry& entry : engine.images.entries()) {
    const CachedImage& image = *entry.image;
    view.entries.push_back(
        {entry.name, image.width, image.height, entry.offset, image.totalSize, engine.images.clut(image) != nullptr});
  }
  return view;
}

GlyphCacheView inspectGlyphCache(Engine& engine) {
  const hsGLibrary& library = engine.graphics;
  GlyphCacheView view;
  view.strikes = library.fGlyphCache ? library.fGlyphCache->Count() : 0;
  view.mostStrikes = hsGGlyphCache::kMostStrikes;
  view.imageBytes = library.fGlyphBytes;
  view.budgetBytes = hsGGlyphCache::kGlyphBudget;
  view.cleared = library.fGlyphPurges;
  return view;
}
