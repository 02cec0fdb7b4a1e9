// What the targets for picture files share: an engine on a folder of its own, and one file to draw.
#pragma once

#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>

#include "engine/imagecache.h"
#include "host/headless/headlessdesktop.h"

// Writes the bytes under `name`, draws it, tiled too, and draws it again from the cache.
inline void drawPictureFile(const char* name, const uint8_t* data, size_t size) {
  static const bool entered = [] {
    std::string folder = (std::filesystem::temp_directory_path() / "vistrel-fuzz-XXXXXX").string();
    std::filesystem::current_path(mkdtemp(folder.data()));
    return true;
  }();
  (void)entered;
  std::ofstream(name, std::ios::binary).write(reinterpret_cast<const char*>(data), std::streamsize(size));
  HeadlessDesktop desktop;
  desktop.start();
  for (bool tile : {false, true}) {
    Bounds rect = {700, 470, 50, 20};
    imageDraw(name, 3, -2, &rect, tile);
  }
}
