// Colour tables of an 8-bit screen.
//
// A table that came from a file is kept under its name as long as the engine runs. Index 237 is transparent in every
// one of them, so its colour is 0 whatever the file says.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gfx/foundation/hsref.h"
#include "gfx/pixel/hsgcolortable.h"

struct Clut {
  std::string name;  // empty for one that belongs to a picture
  int count = 0;
  std::array<uint32_t, 256> colors{};                         // 0xYYRRBBAA; zero beyond count
  hsRef<hsGColorTable> colorTable = hsMake<hsGColorTable>();  // the same for the graphics library
};

// Hands the colours below `count` to the graphics library: alpha full, then Y, Cr and Cb.
void clutFinish(Clut* clut);

// The tables that one engine has read from files.
class ClutShelf {
 public:
  Clut* load(const char* fileName);

 private:
  std::vector<std::unique_ptr<Clut>> cluts;
};

ClutShelf& currentCluts();  // of the engine that is current on this thread

// The table of that file, whatever the case of its name. Null, after logging why, when it can't be read.
Clut* clutLoad(const char* fileName);

// Makes it the screen's, if the screen is 8-bit and has another.
void clutActivate(Clut* clut);
