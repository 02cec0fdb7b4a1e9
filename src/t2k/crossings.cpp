#include "t2k/crossings.h"

namespace {

constexpr uint32_t kRisingKinds = kVerticalRising | kHorizontalRising;

inline Crossing PlaceOf(Crossing c) { return c >> kKindBits; }

inline void OrderPair(Crossing& a, Crossing& b) {
  const Crossing low = std::min(a, b);
  b = std::max(a, b);
  a = low;
}

// Sorts the few crossings that most lines have, by insertion without a branch. Says, like the one below, whether they
// rise and fall in pairs from the first on, so that nothing overlaps.
template <int kCount>
inline bool SortFew(Crossing* c) {
  for (int i = 1; i < kCount; ++i) {
    for (int j = i; j > 0; --j) OrderPair(c[j - 1], c[j]);
  }
  Crossing opposite = kRisingKinds;
  for (int i = 0; i < kCount; i += 2) opposite &= c[i] ^ c[i + 1];
  return opposite != 0;
}

bool SortMany(Crossing* c, int count) {
  for (int i = 1; i < count; ++i) {
    const Crossing moving = c[i];
    int j = i;
    for (; j > 0 && c[j - 1] > moving; --j) c[j] = c[j - 1];
    c[j] = moving;
  }
  if (count & 1) return false;
  Crossing opposite = kRisingKinds;
  for (int i = 0; i < count; i += 2) opposite &= c[i] ^ c[i + 1];
  return opposite != 0;
}

inline bool SortLine(Crossing* c, int count) {
  switch (count) {
    case 2: return SortFew<2>(c);
    case 4: return SortFew<4>(c);
    case 6: return SortFew<6>(c);
    default: return SortMany(c, count);
  }
}

inline bool SamePlace(Crossing a, Crossing b) { return PlaceOf(a) == PlaceOf(b); }

// Whether it matters in which order crossings of two kinds at one place stand. It does where the second of them would
// end one span and the first begin another, or the other way about, and where they are more than two.
bool IsUndecided(const Crossing* c, int count) {
  int winding = 0;
  for (int i = 0; i + 1 < count; ++i) {
    if (SamePlace(c[i], c[i + 1]) && c[i] != c[i + 1]) {
      const bool more = (i > 0 && SamePlace(c[i - 1], c[i])) || (i + 2 < count && SamePlace(c[i + 1], c[i + 2]));
      if (more || winding == 1 || winding == -1) return true;
    }
    winding += c[i] & kRisingKinds ? 1 : -1;
  }
  return false;
}

// A crossing below the slot of its line, in the order of the walk. The kind in the low bits takes no part in sorting.
using SequencedCrossing = uint64_t;

// Not stable: where crossings of different kinds share a place, which of them survives an overlap hangs on the order
// that this very sort leaves them in.
void ShellSort(SequencedCrossing* c, int n) {
  int gap = 1;
  while (gap <= n / 9) gap = 3 * gap + 1;
  for (; gap > 0; gap /= 3) {
    for (int i = gap; i < n; ++i) {
      const SequencedCrossing moving = c[i];
      int j = i;
      for (; j >= gap && c[j - gap] >> kKindBits > moving >> kKindBits; j -= gap) c[j] = c[j - gap];
      c[j] = moving;
    }
  }
}

// A crossing at which the winding rises above one lies inside, and so does the one behind it. Gives what is left.
int StrikeLine(tsiMemObject* mem, Crossing* line, int count) {
  int winding = 0, left = 0;
  bool strikeNext = false;
  for (int i = 0; i < count; ++i) {
    winding += line[i] & kRisingKinds ? 1 : -1;
    const bool inside = winding > 1 || winding < -1;
    if (!inside && !strikeNext) line[left++] = line[i];
    strikeNext = inside;
  }
  tsi_Assert(mem, winding == 0);
  return left;
}

}  // namespace

// Deals crossings out to their lines as they come. A line without room counts on and writes over what it has.
class CrossingTable::LineSink {
 public:
  explicit LineSink(CrossingTable* table)
      : entries_(table->entries_.get()),
        count_(table->count_),
        lowRow_(table->lowRow_),
        lowColumn_(table->lowColumn_ - table->rows_) {}

  template <class Next>
  void AddRun(bool vertical, int32_t line, int length, uint32_t kind, Next next) {
    const int slot = (line >> 6) - (vertical ? lowColumn_ : lowRow_);
    int32_t* count = count_ + slot;
    Crossing* entry = entries_ + slot * kLineRoom;
    for (; length > 0; --length) {
      const int32_t used = (*count)++;
      entry[used & (kLineRoom - 1)] = MakeCrossing(next(), kind);
      ++count;
      entry += kLineRoom;
    }
  }

 private:
  Crossing* const entries_;
  int32_t* const count_;
  const int lowRow_, lowColumn_;  // the latter as if slots of columns began at 0
};

// Keeps crossings in the order of the walk.
class CrossingTable::SequenceSink {
 public:
  explicit SequenceSink(CrossingTable* table) : table_(table) {}

  template <class Next>
  void AddRun(bool vertical, int32_t line, int length, uint32_t kind, Next next) {
    if (length > kMaxEdges - int(all.size())) table_->overflowed_ = true;
    if (table_->overflowed_) return;
    const int slot = table_->SlotOf(vertical, line);
    for (int i = 0; i < length; ++i) all.push_back(uint64_t(slot + i) << 32 | MakeCrossing(next(), kind));
  }

  std::vector<SequencedCrossing> all;

 private:
  CrossingTable* table_;
};

CrossingTable::CrossingTable(const GlyphClass& glyph, const CrossingBounds& box, int oversample, bool exactSpans)
    : mem_(glyph.mem),
      glyph_(glyph),
      oversample_(oversample),
      exactSpans_(exactSpans),
      rows_((box.ymax * oversample >> 6) - (box.ymin * oversample >> 6) + 1),
      columns_((box.xmax * oversample >> 6) - (box.xmin * oversample >> 6) + 1),
      lowRow_(box.ymin * oversample >> 6),
      lowColumn_(box.xmin * oversample >> 6),
      entries_(mem_, uint32_t(rows_ + columns_) * kLineRoom),
      lines_(mem_, uint32_t(rows_ + columns_) * 2),
      start_(lines_.get()),
      count_(start_ + rows_ + columns_),
      bounds_{kCrossingLimit, kCrossingLimit, -kCrossingLimit, -kCrossingLimit} {
  const int slots = rows_ + columns_;
  for (int slot = 0; slot < slots; ++slot) start_[slot] = slot * kLineRoom;
  std::fill_n(count_, slots, 0);
  LineSink sink(this);
  OutlineWalker<LineSink>(glyph, oversample, sink).Walk();
  if (!SortLines(false) || !SortLines(true)) SortInSequence();
}

// The first and the last line of a direction that has crossings, and the outermost crossings of all of them.
struct CrossingTable::LineExtent {
  int first = -1, last = -1;
  Crossing lowest = ~Crossing{0}, highest = 0;

  void Take(int slot, const Crossing* line, int count) {
    if (first < 0) first = slot;
    last = slot;
    lowest = std::min(lowest, line[0]);
    highest = std::max(highest, line[count - 1]);
  }
};

// Sorts and strikes each line by itself, which is cheap. False if that isn't enough: a line is crowded, or an order
// undecided.
bool CrossingTable::SortLines(bool vertical) {
  const int begin = vertical ? rows_ : 0, end = vertical ? rows_ + columns_ : rows_;
  const bool exactSpans = exactSpans_;
  int32_t* const counts = count_;
  Crossing* line = entries_.get() + begin * kLineRoom;
  LineExtent extent;
  for (int slot = begin; slot < end; ++slot, line += kLineRoom) {
    const int count = counts[slot];
    if (!count) continue;
    if (count > kLineRoom) return false;
    const bool inPairs = SortLine(line, count);
    extent.Take(slot, line, count);
    if (exactSpans && count > 2 && IsUndecided(line, count)) return false;
    if (!inPairs) counts[slot] = StrikeLine(mem_, line, count);
  }
  ExtendBounds(vertical, extent);
  return true;
}

void CrossingTable::SortInSequence() {
  SequenceSink sink(this);
  OutlineWalker<SequenceSink>(glyph_, oversample_, sink).Walk();
  if (overflowed_) return;
  ShellSort(sink.all.data(), int(sink.all.size()));
  const int slots = rows_ + columns_;
  entries_.Renew(uint32_t(sink.all.size()));
  Crossing* entries = entries_.get();
  std::fill_n(count_, slots, 0);
  for (size_t i = 0; i < sink.all.size(); ++i) {
    const auto slot = int(sink.all[i] >> 32);
    if (!count_[slot]++) start_[slot] = int32_t(i);
    entries[i] = Crossing(sink.all[i]);
  }
  LineExtent extent[2];
  for (int slot = 0; slot < slots; ++slot) {
    if (!count_[slot]) continue;
    Crossing* line = entries + start_[slot];
    extent[slot >= rows_].Take(slot, line, count_[slot]);
    count_[slot] = StrikeLine(mem_, line, count_[slot]);
  }
  for (const bool vertical : {false, true}) ExtendBounds(vertical, extent[vertical]);
}

void CrossingTable::ExtendBounds(bool vertical, const LineExtent& extent) {
  if (extent.first < 0) return;
  const int32_t firstLine = (vertical ? lowColumn_ + extent.first - rows_ : lowRow_ + extent.first) * 64 + 32;
  const int32_t lastLine = firstLine + (extent.last - extent.first) * 64;
  const auto widen = [](int32_t& min, int32_t& max, int32_t low, int32_t high) {
    min = std::min(min, low);
    max = std::max(max, high);
  };
  auto& [xmin, ymin, xmax, ymax] = bounds_;
  widen(vertical ? xmin : ymin, vertical ? xmax : ymax, firstLine, lastLine);
  widen(vertical ? ymin : xmin, vertical ? ymax : xmax, AlongOf(extent.lowest), AlongOf(extent.highest));
}
