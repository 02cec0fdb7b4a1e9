#include "studio/inspector/widgettree.h"

#include <algorithm>
#include <set>

#include "kit/source/schema.h"

namespace {

std::map<WidgetId, std::string> labelsOf(const std::vector<WidgetView>& widgets) {
  std::map<WidgetId, std::string> labels;
  std::map<WidgetId, size_t> children;  // so far
  for (const WidgetView& widget : widgets) {
    const size_t number = ++children[widget.parent];
    const ObjectKind kind = widget.isRoot ? ObjectKind::root : ObjectKind::widget;
    labels[widget.id] =
        widget.level == 0 ? "screen" : objectLabel(kind, widgetKindName(widget.kind), widget.name, number);
  }
  return labels;
}

bool isContainer(WidgetKind kind) {
  return kind == WidgetKind::box || kind == WidgetKind::group || kind == WidgetKind::frame;
}

bool isNotSeen(const WidgetView& widget, const std::vector<UnseenReason>& reasons) {
  if (widget.contentHidden || reasons.empty()) return false;
  // A field to type into is seen by its background.
  const bool isEmptyField = reasons.size() == 1 && reasons.front().why == Unseen::emptyText;
  if (isEmptyField && widget.bgColor && !widget.backgroundHidden) return false;
  const auto showsNothing = [](const UnseenReason& reason) { return reason.why == Unseen::nothingToShow; };
  return !isContainer(widget.kind) || std::none_of(reasons.begin(), reasons.end(), showsNothing);
}

TreeRow rowOf(const WidgetView& widget) {
  TreeRow row;
  row.id = widget.id;
  row.kind = widget.kind;
  row.bounds = widget.bounds;
  row.hidden = widget.contentHidden;
  row.backgroundHidden = widget.backgroundHidden;
  row.focused = widget.focused;
  row.highlighted = widget.highlighted;
  return row;
}

}  // namespace

std::vector<TreeRow> widgetTree(Engine& engine) {
  const std::vector<WidgetView> widgets = inspectWidgets(engine);
  const auto reasons = whyNotSeen(engine);
  const auto labels = labelsOf(widgets);
  std::vector<TreeRow> rows;
  std::map<WidgetId, size_t> rowNumbers;
  std::set<std::string> paths;
  for (size_t i = 0; i < widgets.size(); ++i) {
    const WidgetView& widget = widgets[i];
    if (widget.level == 0) continue;
    TreeRow row = rowOf(widget);
    row.notSeen = isNotSeen(widget, reasons[i]);
    row.label = labels.at(widget.id);
    row.path = row.label;
    if (const auto parent = rowNumbers.find(widget.parent); parent != rowNumbers.end()) {
      row.parent = parent->second;
      row.depth = rows[parent->second].depth + 1;
      row.path = rows[parent->second].path + "/" + row.label;
    }
    const std::string path = row.path;
    for (int more = 2; !paths.insert(row.path).second; ++more) row.path = path + "#" + std::to_string(more);
    rowNumbers[row.id] = rows.size();
    rows.push_back(std::move(row));
  }
  return rows;
}

std::optional<size_t> findPath(const std::vector<TreeRow>& rows, const std::string& path) {
  for (std::string wanted = path; !wanted.empty();) {
    for (size_t i = 0; i < rows.size(); ++i)
      if (rows[i].path == wanted) return i;
    const size_t slash = wanted.rfind('/');
    wanted.resize(slash == std::string::npos ? 0 : slash);
  }
  return std::nullopt;
}

std::optional<size_t> findRow(const std::vector<TreeRow>& rows, WidgetId id) {
  for (size_t i = 0; i < rows.size(); ++i)
    if (rows[i].id == id) return i;
  return std::nullopt;
}

std::map<WidgetId, std::string> widgetLabels(Engine& engine) { return labelsOf(inspectWidgets(engine)); }
