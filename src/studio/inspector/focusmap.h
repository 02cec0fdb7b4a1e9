// Where the keys move the focus on a page, as values to draw.
//
// A script that runs in place of a move may do anything, and is shown as such. What the digit keys alone can reach is
// kept apart: it is seldom meant.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/focus/focusways.h"
#include "studio/inspector/widgetsources.h"

struct FocusPoint {
  int32_t x, y;  // on the screen

  bool operator==(const FocusPoint&) const = default;
};

enum class FocusReach { arrows, digits, never };  // by direction keys alone; by digits, too; by no key

// A widget that shows or answers the focus, or that something leads to.
struct FocusStop {
  WidgetId id = 0;
  std::string label;
  Bounds bounds;
  FocusReach reach = FocusReach::never;
  bool isStart = false, isFocused = false, isHidden = false;
};

struct FocusArrow {
  WidgetId from = 0, to = 0;
  std::string_view direction;  // the attribute: up ... downRight
  ArrowState state = ArrowState::followed;
  FocusPoint tail{}, head{};  // on the edges of the two, beside those of an arrow that leads back
};

struct DeadLink {
  WidgetId from = 0;
  std::string label;
  std::string_view direction;
  std::string name;                // that no widget of the page has
  bool isHidden = false;           // the widget with the link
  FocusPoint tail{}, head{};       // from its edge a little way on
  std::optional<YamlPlace> place;  // where it was written
};

struct FocusMap {
  WidgetId frame = 0;        // whose page it is
  WidgetId start = 0;        // the page's `start` or, without one, what has the focus; 0 for neither
  std::string missingStart;  // a `start` that no widget of the page has as its name
  std::vector<FocusStop> stops;
  std::vector<FocusArrow> arrows;
  std::vector<DeadLink> deadLinks;
  bool scriptsMayMove = false;  // on a way from the start a script runs in place of a move
};

// Of the page in that frame; 0 for the innermost one that keys go to.
FocusMap focusMap(PageRun& run, WidgetSources& sources, WidgetId frame = 0);

// What is wrong on it, in a sentence.
std::string summaryOf(const FocusMap& map);
