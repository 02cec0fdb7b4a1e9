// The entry of a palette that is nearest to a colour.
#pragma once

#include <vector>

#include "kit/pictures/enginecolors.h"

class NearestColor {
 public:
  // One or more colours, 0xYYRRBB00. The lowest number wins a tie.
  explicit NearestColor(const std::vector<uint32_t>& colors);

  size_t find(const EngineColor& color) const;  // its number
  const EngineColor& at(size_t number) const { return colors[number]; }

 private:
  struct Entry {
    EngineColor color;
    size_t number;
  };
  std::vector<EngineColor> colors;
  std::vector<Entry> byLuma;
};
