#include "kit/pictures/nearestcolor.h"

#include <algorithm>
#include <limits>

NearestColor::NearestColor(const std::vector<uint32_t>& words) {
  for (size_t i = 0; i < words.size(); ++i) {
    colors.emplace_back(words[i]);
    byLuma.push_back({colors.back(), i});
  }
  std::stable_sort(byLuma.begin(), byLuma.end(), [](const Entry& a, const Entry& b) { return a.color.y < b.color.y; });
}

// Walks out from the colour's luma both ways, until luma alone is further off than the best.
size_t NearestColor::find(const EngineColor& color) const {
  int best = std::numeric_limits<int>::max();
  size_t number = 0;
  const auto consider = [&](const Entry& entry) {  // false when nothing nearer can lie beyond
    const int y = entry.color.y - color.y;
    if (2 * y * y > best) return false;
    const int distance = colorDistance(entry.color, color);
    if (distance < best || (distance == best && entry.number < number)) {
      best = distance;
      number = entry.number;
    }
    return true;
  };
  const auto middle = std::lower_bound(byLuma.begin(), byLuma.end(), color.y,
                                       [](const Entry& entry, int y) { return entry.color.y < y; });
  auto up = middle, down = middle;
  bool goUp = true, goDown = true;
  while (goUp || goDown) {
    goUp = goUp && up != byLuma.end() && consider(*up++);
    goDown = goDown && down != byLuma.begin() && consider(*--down);
  }
  return number;
}
