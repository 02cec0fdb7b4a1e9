#include "t2k/crossings.h"

namespace {

constexpr int kLineRoom = 16;  // crossings that a line has room for at first
constexpr uint32_t kRisingKinds = kVerticalRising | kHorizontalRising;

inline Crossing PlaceOf(Crossing c) { return c >> kKindBits; }

inline void OrderPair(Crossing& a, Crossing& b) {
  const Crossing low = std::min(a, b);
  b = std::max(a, b);
  a = low;
}

// Most lines have two or four crossings; those are sorted without a branch.
inline void SortLine(Crossing* c, int count) {
  if (count == 2) return OrderPair(c[0], c[1]);
  if (count == 4) {
    OrderPair(c[0], c[1]);
    OrderPair(c[2], c[3]);
    OrderPair(c[0], c[2]);
    OrderPair(c[1], c[3]);
    OrderPair(c[1], c[2]);
    return;
  }
  for (int i = 1; i < count; ++i) {
    const Crossing moving = c[i];
    int j = i;
    for (; j > 0 && c[j - 1] > moving; --j) c[j] = c[j - 1];
    c[j] = moving;
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

// Whether the line is in order as it stands: crossings rise and fall in pairs from the first on, so that nothing
// overlaps, and no span begins where the one ahead of it ends.
inline bool IsPlain(const Crossing* c, int count) {
  if (count == 2) return (c[0] ^ c[1]) & kRisingKinds;
  if (count & 1) return false;
  Crossing opposite = (c[0] ^ c[1]) & kRisingKinds;
  bool touching = false;
  for (int i = 2; i < count; i += 2) {
    opposite &= c[i] ^ c[i + 1];
    touching |= SamePlace(c[i - 1], c[i]);
  }
  return opposite && !touching;
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

// Deals crossings out to their lines as they come.
class CrossingTable::LineSink {
 public:
  explicit LineSink(CrossingTable* table) : table_(table), entries_(table->entries_.get()), count_(table->count_) {}

  bool Begin(bool vertical, int32_t line, int) {
    slot_ = table_->SlotOf(vertical, line);
    return true;
  }
  // A line without room counts on and writes over its last place.
  void Put(int32_t along, uint32_t kind) {
    const int32_t count = count_[slot_]++;
    entries_[slot_ * kLineRoom + std::min(count, kLineRoom - 1)] = MakeCrossing(along, kind);
    ++slot_;
  }

 private:
  const CrossingTable* table_;
  Crossing* entries_;
  int32_t* count_;
  int slot_ = 0;
};

class CrossingTable::SequenceSink {
 public:
  explicit SequenceSink(CrossingTable* table) : table_(table) {}

  bool Begin(bool vertical, int32_t line, int count) {
    if (count > kMaxEdges - int(all.size())) table_->overflowed_ = true;
    slot_ = table_->SlotOf(vertical, line);
    return !table_->overflowed_;
  }
  void Put(int32_t along, uint32_t kind) { all.push_back(uint64_t(slot_++) << 32 | MakeCrossing(along, kind)); }

  std::vector<SequencedCrossing> all;

 private:
  CrossingTable* table_;
  int slot_ = 0;
};

CrossingTable::CrossingTable(const GlyphClass& glyph, const CrossingBounds& box, int oversample)
    : mem_(glyph.mem),
      glyph_(glyph),
      oversample_(oversample),
      rows_((box.ymax * oversample >> 6) - (box.ymin * oversample >> 6) + 1),
      columns_((box.xmax * oversample >> 6) - (box.xmin * oversample >> 6) + 1),
      lowRow_(box.ymin * oversample >> 6),
      lowColumn_(box.xmin * oversample >> 6),
      entries_(mem_, uint32_t(rows_ + columns_) * kLineRoom),
      start_(mem_, uint32_t(rows_ + columns_) * 2),
      count_(start_.get() + rows_ + columns_),
      bounds_{kCrossingLimit, kCrossingLimit, -kCrossingLimit, -kCrossingLimit} {
  const int slots = rows_ + columns_;
  for (int slot = 0; slot < slots; ++slot) start_[size_t(slot)] = slot * kLineRoom;
  std::fill_n(count_, slots, 0);
  LineSink sink(this);
  OutlineWalker<LineSink>(glyph, oversample, sink).Walk();
  if (!SortLines()) SortInSequence();
  if (!overflowed_) SetBounds();
}

// Sorts and strikes each line by itself, which is cheap. False if that isn't enough: a line is crowded, or an order
// undecided.
bool CrossingTable::SortLines() {
  for (int slot = 0; slot < rows_ + columns_; ++slot) {
    const int count = count_[slot];
    if (!count) continue;
    if (count > kLineRoom) return false;
    Crossing* line = LineAt(slot);
    SortLine(line, count);
    if (IsPlain(line, count)) continue;
    if (IsUndecided(line, count)) return false;
    count_[slot] = StrikeLine(mem_, line, count);
  }
  return true;
}

void CrossingTable::SortInSequence() {
  SequenceSink sink(this);
  OutlineWalker<SequenceSink>(glyph_, oversample_, sink).Walk();
  if (overflowed_) return;
  ShellSort(sink.all.data(), int(sink.all.size()));
  const int slots = rows_ + columns_;
  entries_.Resize(uint32_t(sink.all.size()));
  std::fill_n(count_, slots, 0);
  for (size_t i = 0; i < sink.all.size(); ++i) {
    const auto slot = size_t(sink.all[i] >> 32);
    if (!count_[slot]++) start_[slot] = int32_t(i);
    entries_[i] = Crossing(sink.all[i]);
  }
  for (int slot = 0; slot < slots; ++slot) count_[slot] = StrikeLine(mem_, LineAt(slot), count_[slot]);
}

void CrossingTable::SetBounds() {
  auto& [xmin, ymin, xmax, ymax] = bounds_;
  const auto extend = [](const LineSpans& spans, int32_t& lineMin, int32_t& lineMax, int32_t& min, int32_t& max) {
    if (!spans.count) return;
    lineMin = std::min(lineMin, spans.line);
    lineMax = std::max(lineMax, spans.line);
    min = std::min(min, AlongOf(spans.begin[0]));
    max = std::max(max, AlongOf(spans.begin[spans.count - 1]));
  };
  for (int i = 0; i < rows_; ++i) extend(Row(i), ymin, ymax, xmin, xmax);
  for (int i = 0; i < columns_; ++i) extend(Column(i), xmin, xmax, ymin, ymax);
}
