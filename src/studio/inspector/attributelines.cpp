#include "studio/inspector/attributelines.h"

#include <algorithm>
#include <string_view>

namespace {

// Without the guide's marks, and what it says of the guide itself.
std::string plainText(std::string_view marked) {
  marked = marked.substr(0, marked.find("; see "));
  std::string plain;
  for (const char c : marked)
    if (c != '`' && c != '*') plain += c;
  return plain;
}

std::string counted(int64_t n, const char* one, const char* more) {
  return std::to_string(n) + " " + (n == 1 ? one : more);
}

// Scripts and tables are too long to show.
std::string shownValue(const AttributeView& view) {
  if (view.origin == ValueOrigin::byDefault) return plainText(view.text);
  const int64_t n = view.number.value_or(0);
  switch (view.kind) {
    case AttributeKind::script: return "a script of " + counted(n, "byte", "bytes");
    case AttributeKind::widgets: return counted(n, "widget", "widgets");
    case AttributeKind::styles: return counted(n, "style", "styles");
    case AttributeKind::lines: return counted(n, "line", "lines");
    case AttributeKind::files: return counted(n, "file", "files");
    default: return view.text;
  }
}

EditBy editorFor(AttributeKind kind, bool hasChoices) {
  switch (kind) {
    case AttributeKind::integer: return EditBy::number;
    case AttributeKind::boolean: return EditBy::flag;
    case AttributeKind::color: return EditBy::color;
    case AttributeKind::string: return hasChoices ? EditBy::choice : EditBy::text;
    default: return EditBy::nothing;
  }
}

class LineMaker {
 public:
  LineMaker(PageRun& run, WidgetSources& sources, const WidgetView& w)
      : widget(w), source(sources.of(w.id)), attributes(inspectAttributes(run.engine(), w.id)) {}

  std::vector<AttributeLine> run() {
    std::vector<AttributeLine> lines;
    lines.push_back(rectangle("x", widget.given.x, widget.place.x, "of its left edge, in what it lies in"));
    lines.push_back(rectangle("y", widget.given.y, widget.place.y, "of its top edge, in what it lies in"));
    lines.push_back(rectangle("width", widget.given.w, widget.place.w, ""));
    lines.push_back(rectangle("height", widget.given.h, widget.place.h, ""));
    for (const AttributeView& view : attributes) lines.push_back(attribute(view));
    return lines;
  }

 private:
  AttributeLine rectangle(const char* name, int32_t given, int32_t now, const char* help) {
    AttributeLine line;
    line.name = name;
    line.kind = AttributeKind::integer;
    line.value = std::to_string(now);
    setPlace(line);
    line.origin = now != given                            ? ValueOrigin::changed
                  : line.place || (given != 0 && !source) ? ValueOrigin::page
                                                          : ValueOrigin::byDefault;
    line.from = whereFrom(line);
    line.help = help;
    line.range = "pixels, 0 to 65535";
    setEditor(line, EditBy::number);
    return line;
  }

  AttributeLine attribute(const AttributeView& view) {
    AttributeLine line;
    line.name = view.name;
    line.kind = view.kind;
    line.value = shownValue(view);
    line.origin = view.origin;
    setPlace(line);
    line.from = whereFrom(line);
    const ObjectKind object = widget.isRoot ? ObjectKind::root : ObjectKind::widget;
    const std::string_view type = widgetKindName(widget.kind);
    line.choices = attributeWords(object, type, view.name);
    const AttributeOwner owner = widget.isRoot ? AttributeOwner::root : AttributeOwner::widget;
    if (const AttributeRow* row = attributeRow(owner, type, view.name)) {
      line.help = plainText(row->help);
      line.range = plainText(row->value);
    }
    setEditor(line, editorFor(view.kind, !line.choices.empty()));
    return line;
  }

  void setEditor(AttributeLine& line, EditBy editor) const {
    if (!source) line.whyNotEdited = "nobody knows its source";
    if (editor == EditBy::nothing) line.whyNotEdited = "it is too long for a line; edit the file";
    if (line.whyNotEdited.empty()) line.editBy = editor;
  }

  void setPlace(AttributeLine& line) const {
    const YamlPlace* place = source ? findPlace(source->places, line.name) : nullptr;
    if (!place) return;
    line.place = *place;
    for (auto use = place->use; use; use = use->at.use) line.uses.push_back(use->what + " at " + shortPlace(use->at));
  }

  std::string whereFrom(const AttributeLine& line) const {
    switch (line.origin) {
      case ValueOrigin::byDefault: return "default";
      case ValueOrigin::page: return line.place ? shortPlace(*line.place) : "the page";
      case ValueOrigin::refused: return "refused: the page has it as another type, so the default counts";
      case ValueOrigin::changed: return "changed by " + whoChanges(line.name);
    }
    return "";
  }

  bool isGiven(std::string_view name) const {
    return std::any_of(attributes.begin(), attributes.end(), [&](const AttributeView& view) {
      return view.name == name && view.origin == ValueOrigin::page;
    });
  }

  // Whoever can have done it.
  std::string whoChanges(std::string_view name) const {
    const bool takesKeys = widget.takesUpDown || widget.takesLeftRight;
    if (widget.kind == WidgetKind::image && (name == "width" || name == "height")) return "its picture";
    if (name == "hidden" && isGiven("timeout")) return "its timeout or a script";
    if (name == "value" && (takesKeys || isGiven("maxLength"))) return "a key or a script";
    if (name == "selectedLine") return "a key or a script";
    return "a script";
  }

  const WidgetView& widget;
  const std::optional<WidgetSource> source;
  const std::vector<AttributeView> attributes;
};

}  // namespace

std::vector<AttributeLine> attributeLines(PageRun& run, WidgetSources& sources, WidgetId id) {
  const auto widget = inspectWidget(run.engine(), id);
  return widget ? LineMaker(run, sources, *widget).run() : std::vector<AttributeLine>{};
}
