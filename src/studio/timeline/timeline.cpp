#include "studio/timeline/timeline.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr std::string_view kKindNames[kTimelineKinds] = {"event", "focus", "script",  "timer", "draw",
                                                         "swap",  "load",  "picture", "error", "log"};

char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + ('a' - 'A')) : c; }

// "1,234,567"
std::string grouped(uint64_t n) {
  std::string digits = std::to_string(n);
  for (size_t at = digits.size(); at > 3;) digits.insert(at -= 3, ",");
  return digits;
}

}  // namespace

std::string_view timelineKindName(TimelineKind kind) { return kKindNames[size_t(kind)]; }

std::string timelineTime(uint32_t milliseconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%u.%03u s", milliseconds / 1000, milliseconds % 1000);
  return text;
}

std::string timelineCost(const DrawCost& cost) {
  std::string out;
  const auto add = [&out](uint64_t n, const char* one, const char* many) {
    if (n > 0) out += (out.empty() ? "" : ", ") + grouped(n) + " " + (n == 1 ? one : many);
  };
  add(cost.pixelsFilled, "pixel filled", "pixels filled");
  add(cost.pixelsCopied, "pixel copied", "pixels copied");
  add(cost.glyphs, "glyph", "glyphs");
  add(cost.bytesRead, "byte read", "bytes read");
  return out;
}

bool TimelineFilter::takes(const TimelineRow& row) const {
  if (!kinds[size_t(row.kind)] || (opening != 0 && row.opening != opening)) return false;
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return std::search(row.text.begin(), row.text.end(), text.begin(), text.end(), same) != row.text.end() ||
         text.empty();
}

std::vector<uint64_t> Timeline::rowsThat(const TimelineFilter& filter) const {
  std::vector<uint64_t> found;
  for (uint64_t number = firstKept; number < next; ++number)
    if (filter.takes(row(number))) found.push_back(number);
  return found;
}

void Timeline::clear() {
  rows.clear();
  // The numbers go on; the rows begin again at the start of the vector.
  next += (most - next % most) % most;
  firstKept = cleared = next;
}

uint64_t Timeline::add(TimelineRow row) {
  row.number = next;
  if (rows.size() < most) {
    rows.push_back(std::move(row));
  } else {
    rows[next % most] = std::move(row);
    ++firstKept;
  }
  return next++;
}

TimelineRow* Timeline::change(uint64_t number) {
  return number >= firstKept && number < next ? &rows[number % most] : nullptr;
}
