// The widgets of a running page as rows of a tree, for display.
//
// A row is found again after a reload by the labels on the way to it, since the number of a widget is never used again.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/inspect.h"

struct TreeRow {
  WidgetId id = 0;
  std::optional<size_t> parent;  // row; none for the root of the top page
  int depth = 0;                 // 0 for that
  std::string label;             // its name or, without one, its type and its number among its siblings
  std::string path;              // labels from the root on; no two rows have the same
  WidgetKind kind = WidgetKind::box;
  Bounds bounds;  // on the screen
  bool hidden = false, backgroundHidden = false;
  bool focused = false;      // of its frame
  bool highlighted = false;  // shows as focused
  bool notSeen = false;  // though it isn't hidden; what only holds others, and shows nothing itself, is no such case
};

// Each before what lies in it, in the order of the page; a page inside lies in its frame.
std::vector<TreeRow> widgetTree(Engine& engine);

// The row of that path, or of as much of it as there still is; none when even the root is another.
std::optional<size_t> findPath(const std::vector<TreeRow>& rows, const std::string& path);
std::optional<size_t> findRow(const std::vector<TreeRow>& rows, WidgetId id);

// What people call each widget: its label, and "screen" for the top frame.
std::map<WidgetId, std::string> widgetLabels(Engine& engine);
