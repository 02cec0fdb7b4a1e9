// Putting crossings in order, and striking out what overlapping contours cause.
#include <algorithm>

#include "t2k/crossings.h"

namespace {

constexpr int kInsertionLimit = 24;

inline uint64_t PlaceOf(Crossing c) { return c >> kKindBits; }

void SortLine(Crossing* begin, Crossing* end) {
  if (end - begin > kInsertionLimit) {
    std::sort(begin, end);
    return;
  }
  for (Crossing* i = begin + 1; i < end; ++i) {
    const Crossing c = *i;
    Crossing* j = i;
    for (; j > begin && j[-1] > c; --j) *j = j[-1];
    *j = c;
  }
}

}  // namespace

// The order of crossings of different kinds at one place decides which of them survive an overlap, and it is this
// sort's: not stable, so it is kept as it is.
void CrossingTable::ShellSort() {
  const int n = numEdges_;
  Crossing* c = edges_.get();
  int gap = 1;
  while (gap <= n / 9) gap = 3 * gap + 1;
  for (; gap > 0; gap /= 3) {
    for (int i = gap; i < n; ++i) {
      const Crossing moving = c[i];
      int j = i;
      for (; j >= gap && PlaceOf(c[j - gap]) > PlaceOf(moving); j -= gap) c[j] = c[j - gap];
      c[j] = moving;
    }
  }
}

// Deals the crossings out to their lines and sorts each line by itself, which is far cheaper. Only where crossings of
// two kinds share a place does the slow sort have to tell their order.
void CrossingTable::SortByLines() {
  const int32_t lowRow = bounds_.ymin >> 6, lowColumn = bounds_.xmin >> 6;
  const int rows = (bounds_.ymax >> 6) - lowRow + 1;
  const int columns = (bounds_.xmax >> 6) - lowColumn + 1;
  const auto slotOf = [&](Crossing c) {
    const int32_t cell = LineOf(c) >> 6;
    return IsVertical(c) ? rows + (cell - lowColumn) : cell - lowRow;
  };

  const int slots = rows + columns;
  tsiBlock<int32_t> start(mem_, uint32_t(slots) + 1);
  std::fill_n(start.get(), slots + 1, 0);
  const Crossing* in = edges_.get();
  for (int i = 0; i < numEdges_; ++i) start[size_t(slotOf(in[i]))]++;
  for (int i = 0, sum = 0; i <= slots; ++i) sum += std::exchange(start[size_t(i)], sum);

  tsiBlock<Crossing> sorted(mem_, uint32_t(maxEdges_));
  for (int i = 0; i < numEdges_; ++i) sorted[size_t(start[size_t(slotOf(in[i]))]++)] = in[i];
  // Each start has moved on to the start of the next slot.
  for (int i = 0, begin = 0; i < slots; ++i) {
    const int end = start[size_t(i)];
    SortLine(sorted.get() + begin, sorted.get() + end);
    begin = end;
  }

  const bool undecided = std::adjacent_find(sorted.get(), sorted.get() + numEdges_, [](Crossing a, Crossing b) {
                           return PlaceOf(a) == PlaceOf(b) && a != b;
                         }) != sorted.get() + numEdges_;
  if (undecided) {
    ShellSort();
  } else {
    edges_.Swap(sorted);
  }
}

// Moves what survives of [begin, end) down to out; gives where it ends. A crossing at which the winding rises above one
// lies inside, and so does the one behind it.
int CrossingTable::StrikeOverlaps(int begin, int end, int out) {
  Crossing* c = edges_.get();
  int winding = 0;
  bool strikeNext = false;
  for (int i = begin; i < end; ++i) {
    winding += KindOf(c[i]) & (kVerticalRising | kHorizontalRising) ? 1 : -1;
    const bool inside = winding > 1 || winding < -1;
    if (!inside && !strikeNext) c[out++] = c[i];
    strikeNext = inside;
  }
  tsi_Assert(mem_, winding == 0);
  return out;
}

void CrossingTable::SortAndStrike() {
  SortByLines();
  const Crossing* begin = edges_.get();
  const auto firstVertical =
      int(std::partition_point(begin, begin + numEdges_, [](Crossing c) { return !IsVertical(c); }) - begin);
  horizontals_ = StrikeOverlaps(0, firstVertical, 0);
  numEdges_ = StrikeOverlaps(firstVertical, numEdges_, horizontals_);
}
