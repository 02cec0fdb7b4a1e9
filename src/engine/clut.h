// Colour tables of an 8-bit screen.
//
// A table that came from a file is held for ever under its name. Index 237 is transparent in every one of them, so its
// colour is 0 whatever the file says.
#pragma once

#include <array>
#include <cstdint>
#include <string>

class hsGColorTable;

struct Clut {
  Clut();
  ~Clut();
  Clut(const Clut&) = delete;
  Clut& operator=(const Clut&) = delete;

  std::string name;  // empty for one that belongs to a picture
  int count = 0;
  std::array<uint32_t, 256> colors{};  // 0xYYRRBBAA; zero beyond count
  hsGColorTable* colorTable;           // the same for the graphics library
};

// Gives the colours below `count` to the graphics library: alpha full, then Y, Cr and Cb.
void clutFinish(Clut* clut);

// The table of that file, whatever the case of its name. Null, with a word in the log, when it can't be read.
Clut* clutLoad(const char* fileName);

// Makes it the screen's, if the screen is 8-bit and has another.
void clutActivate(Clut* clut);

void clutsFree();  // at the end of the engine
