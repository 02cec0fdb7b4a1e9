// What a font file holds, and whether the player can draw with it.
#pragma once

#include <string>

struct FontReport {
  std::string text;     // whole lines, for people
  std::string problem;  // why the player can't draw with it; empty when it can
};

// Throws KitError for what can't be read or is no font.
FontReport reportFont(const std::string& path);
