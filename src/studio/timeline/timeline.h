// What happened on a page, row by row: keys and where they went, scripts, timers, drawings, files, lines of the log.
//
// A bounded list: the oldest rows make space for new ones. Rows have numbers that go on counting, over openings of the
// page too. What surprises: a row is added when something begins, and gets its cost and the rest of its text when that
// has ended.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/inspect.h"

enum class TimelineKind { event, focus, script, timer, draw, swap, load, picture, error, log };
inline constexpr size_t kTimelineKinds = 10;

std::string_view timelineKindName(TimelineKind kind);  // one word, for a list of kinds

struct TimelineRow {
  uint64_t number = 0;
  uint32_t opening = 0;  // of the page, counted from 1: its time begins anew with each
  uint32_t time = 0;     // milliseconds of the player
  TimelineKind kind = TimelineKind::log;
  int depth = 0;        // inside how many others it happened: a script within an event has 1 more than the event
  bool isOpen = false;  // has not ended yet
  std::string text;     // one line; long ones are cut
  DrawCost cost;        // of all that was done between its begin and its end
};

// "1.234 s"
std::string timelineTime(uint32_t milliseconds);
// "1,200 pixels, 14 glyphs, 3,100 bytes read"; empty for what cost nothing.
std::string timelineCost(const DrawCost& cost);

struct TimelineFilter {
  std::bitset<kTimelineKinds> kinds = std::bitset<kTimelineKinds>().set();
  std::string text;      // that a row must have, whatever the case of its letters
  uint32_t opening = 0;  // 0 for all

  bool takes(const TimelineRow& row) const;
};

class Timeline {
 public:
  explicit Timeline(size_t mostRows = 20'000) : most(mostRows) {}

  // The rows that are kept, from `first` on and before `end`; the dropped ones came before.
  uint64_t first() const { return firstKept; }
  uint64_t end() const { return next; }
  size_t size() const { return size_t(next - firstKept); }
  uint64_t dropped() const { return firstKept - cleared; }  // for lack of space
  const TimelineRow& row(uint64_t number) const { return rows[number % most]; }
  std::vector<uint64_t> rowsThat(const TimelineFilter& filter) const;  // numbers, the oldest first

  void clear();

  // For who writes. A page that is opened anew begins the next opening.
  uint32_t beginOpening() { return ++openings; }
  uint64_t add(TimelineRow row);
  TimelineRow* change(uint64_t number);  // null when it has been dropped

 private:
  size_t most;
  std::vector<TimelineRow> rows;  // by their number, modulo `most`
  uint64_t firstKept = 0, next = 0, cleared = 0;
  uint32_t openings = 0;
};
