#include "t2k/crossings.h"

#include <vector>

namespace {

constexpr CrossingBounds kNoBounds{kCrossingLimit, kCrossingLimit, -kCrossingLimit, -kCrossingLimit};

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

}  // namespace

// Deals crossings out to their lines as they come. A line without space counts on and writes over what it has.
template <int kRoom>
class CrossingTable::LineSink {
 public:
  explicit LineSink(CrossingTable* table)
      : entries_(table->entries_.get()),
        count_(table->count_),
        lowRow_(table->lowRow_),
        lowColumn_(table->lowColumn_ - table->rows_) {}

  template <bool kVertical>
  void AddStem(int32_t line, int length, uint32_t kind, int32_t place) {
    AddRun<kVertical>(line, length, kind, [place] { return place; });
  }
  template <bool kVertical, class Next>
  void AddRun(int32_t line, int length, uint32_t kind, Next next) {
    const int slot = (line >> 6) - (kVertical ? lowColumn_ : lowRow_);
    int32_t* count = count_ + slot;
    Crossing* entry = entries_ + slot * kRoom;
    for (const int32_t* end = count + length; count < end; ++count, entry += kRoom) {
      const int32_t used = (*count)++;
      entry[used & (kRoom - 1)] = MakeCrossing(next(), kind);
    }
  }
  // A crossing that isn't one is written down too, after those that count.
  void AddFour(CrossingLanes number, CrossingLanes along, CrossingLanes kind, CrossingLanes is) {
    const CrossingLanes slots = number - CrossingLanes{lowColumn_, lowRow_, lowColumn_, lowRow_};
    const CrossingLanes crossings = (along + kCrossingLimit) << kKindBits | kind;
    for (int i = 0; i < 4; ++i) {
      const int slot = slots[i];
      const int32_t used = count_[slot];
      entries_[slot * kRoom + (used & (kRoom - 1))] = Crossing(crossings[i]);
      count_[slot] = used + is[i];
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

  template <bool kVertical>
  void AddStem(int32_t line, int length, uint32_t kind, int32_t place) {
    AddRun<kVertical>(line, length, kind, [place] { return place; });
  }
  template <bool kVertical, class Next>
  void AddRun(int32_t line, int length, uint32_t kind, Next next) {
    if (length > kMaxEdges - int(all.size())) table_->overflowed_ = true;
    if (table_->overflowed_) return;
    const int slot = table_->SlotOf(kVertical, line >> 6);
    for (int i = 0; i < length; ++i) all.push_back(uint64_t(slot + i) << 32 | MakeCrossing(next(), kind));
  }

  void AddFour(CrossingLanes number, CrossingLanes along, CrossingLanes kind, CrossingLanes is) {
    const auto addLane = [&]<bool kVertical>(int i) {
      AddStem<kVertical>(number[i] * 64, is[i], uint32_t(kind[i]), along[i]);
    };
    for (int i = 0; i < 4; i += 2) {
      addLane.template operator()<true>(i);
      addLane.template operator()<false>(i + 1);
    }
  }

  std::vector<SequencedCrossing> all;

 private:
  CrossingTable* table_;
};

CrossingTable::CrossingTable(const GlyphClass& glyph, const CrossingBounds& box, int oversample)
    : mem_(glyph.mem),
      glyph_(glyph),
      oversample_(oversample),
      rows_((box.ymax * oversample >> 6) - (box.ymin * oversample >> 6) + 1),
      columns_((box.xmax * oversample >> 6) - (box.xmin * oversample >> 6) + 1),
      lowRow_(box.ymin * oversample >> 6),
      lowColumn_(box.xmin * oversample >> 6),
      entries_(mem_, uint32_t(Slots()) * kLineRoom),
      lines_(mem_, uint32_t(Slots()) * 2),
      start_(lines_.get()),
      count_(start_ + Slots()) {
  WalkIntoLines<kLineRoom>();
}

void CrossingTable::Settle(bool exactSpans) {
  if (SettleAll(exactSpans)) return;
  if (!MakeRoom() || !SettleAll(exactSpans)) SortInSequence();
}

template <int kRoom>
void CrossingTable::WalkIntoLines() {
  room_ = kRoom;
  for (int slot = 0; slot < Slots(); ++slot) start_[slot] = slot * kRoom;
  std::fill_n(count_, Slots(), 0);
  bounds_ = kNoBounds;
  LineSink<kRoom> sink(this);
  OutlineWalker<LineSink<kRoom>>(glyph_, oversample_, sink).Walk();
}

// False if that helps no line, or takes too much.
bool CrossingTable::MakeRoom() {
  const int most = *std::max_element(count_, count_ + Slots());
  if (most < kLineRoom || most >= kMoreRoom || Slots() > kMaxEdges / kMoreRoom) return false;
  entries_.Renew(uint32_t(Slots()) * kMoreRoom);
  WalkIntoLines<kMoreRoom>();
  return true;
}

// Sorts and strikes each line by itself, which is cheap. False if that isn't enough: a line is crowded, or an order
// undecided.
bool CrossingTable::SettleLines(bool vertical, bool exactSpans) {
  const int begin = vertical ? rows_ : 0, end = vertical ? rows_ + columns_ : rows_;
  Crossing* c = entries_.get() + begin * room_;
  LineExtent extent;
  for (int slot = begin; slot < end; ++slot, c += room_) {
    const int count = count_[slot];
    if (count == 0) continue;
    if (count >= room_) return false;
    const bool inPairs = SortCrossings(c, count);
    extent.Take(slot, c[0], c[count - 1]);
    if (exactSpans && count > 2 && IsUndecided(c, count)) return false;
    if (!inPairs) count_[slot] = StrikeLine(mem_, c, count);
  }
  ExtendBounds(vertical, extent);
  return true;
}

void CrossingTable::SortInSequence() {
  bounds_ = kNoBounds;
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
    extent[slot >= rows_].Take(slot, line[0], line[count_[slot] - 1]);
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
