// The entry of a palette that is nearest to a colour.
//
// Colour space is cut into cells. Of the palette few colours can be nearest to anything in a cell; those are found when
// the cell is first asked for, so an object is for one thread. Distances to four colours are computed at once, as
// floats, which hold all of them exactly: of (a - b)² a candidate keeps a² and -2a, and b² is the same for all.
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
  using Four = float __attribute__((vector_size(16)));
  struct FourColors {
    Four y, cr, cb;
  };
  struct FourCandidates {
    Four own;  // its number among its neighbours besides
    Four y, cr, cb;
  };
  struct Cell {
    uint32_t begin = 0, end = 0;  // in `candidates`; none while not asked for
  };

  Cell candidatesFor(const EngineColor& color) const;
  void addCandidate(uint32_t place, uint32_t number) const;

  std::vector<EngineColor> colors;
  std::vector<FourColors> palette;  // the same colours; what is left of the last four is the last colour again
  mutable std::vector<Cell> cells;
  mutable std::vector<FourCandidates> candidates;
  mutable std::vector<uint32_t> numbers;  // of the candidates, four for each
};
