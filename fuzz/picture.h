// What the targets for picture files share: an engine on a folder of its own, and one file to draw.
#pragma once

#include <cstdlib>
#include <vector>

#include "engine/images/imagedraw.h"
#include "engine/images/imageload.h"
#include "folder.h"
#include "host/headless/headlessdesktop.h"

// The engine, started once, with nothing in its cache: a start takes longer than many pictures.
inline Engine& freshEngine() {
  static HeadlessDesktop* const desktop = [] {
    enterFolder();
    constexpr uint8_t kGood[] = {0, 0, 0, 2, 0, 1, 0, 1, 0, 0, 0, 0, 7, 8};
    writeBytes("good.kpx", kGood, sizeof kGood);
    auto* made = new HeadlessDesktop;
    made->start();
    return made;
  }();
  static std::vector<uint32_t> memory(kImageCacheSize / 4);
  desktop->log.clear();
  Engine& engine = desktop->shell.engine;
  const EngineScope here(engine);
  engine.cluts = {};
  engine.images.init(memory.data(), kImageCacheSize);
  return engine;
}

// Writes the bytes under `name`, draws it, tiled too, and draws it again from the cache, which must take a good picture
// afterwards.
inline void drawPictureFile(const char* name, const uint8_t* data, size_t size) {
  const EngineScope here(freshEngine());
  writeBytes(name, data, size);
  displaySetDepth(size % 2 ? 8 : 16);
  for (bool tile : {false, true}) {
    Bounds rect = {700, 470, 50, 20};
    imageDraw(name, 3, -2, &rect, tile);
  }
  const CachedImage* good = imageGet("good.kpx");
  if (!good || currentImages().pixels(*good)[1] != 8) std::abort();
}
