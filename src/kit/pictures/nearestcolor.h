// The entry of a palette that is nearest to a colour.
//
// Colour space is cut into cells. Of the palette few colours can be nearest to anything in a cell; those are found when
// the cell is first asked for, so an object is for one thread.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/pictures/enginecolors.h"

class NearestColor {
 public:
  // One or more colours, 0xYYRRBB00. The lowest number wins a tie.
  explicit NearestColor(const std::vector<uint32_t>& colors);

  size_t find(const EngineColor& color) const;  // its number
  const EngineColor& at(size_t number) const { return colors[number]; }

 private:
  struct Candidate {
    EngineColor color;
    uint32_t number;
  };
  struct Cell {
    uint32_t begin = 0, end = 0;  // in `candidates`; none while not asked for
  };

  Cell candidatesFor(size_t cell) const;

  std::vector<EngineColor> colors;
  mutable std::vector<Cell> cells;
  mutable std::vector<Candidate> candidates;
};
