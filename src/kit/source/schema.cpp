#include "kit/source/schema.h"

namespace {

using enum AttributeForm;

struct Row {
  std::string_view type;  // of widget; empty for all
  std::string_view name;
  AttributeForm form;
};

constexpr Row kWidgetRows[] = {
    {"", "type", string},
    {"", "name", string},
    {"", "bgColor", color},
    {"", "background", string},
    {"", "tileBackground", boolean},
    {"", "highlightFrame", boolean},
    {"", "frameColor", color},
    {"", "frameWidth", integer},
    {"", "timeout", integer},
    {"", "hidden", string},
    {"", "master", string},
    {"", "onUp", script},
    {"", "onDown", script},
    {"", "onLeft", script},
    {"", "onRight", script},
    {"", "onClick", script},
    {"", "onFocus", script},
    {"", "onBlur", script},
    {"", "onChange", script},
    {"", "up", string},
    {"", "down", string},
    {"", "left", string},
    {"", "right", string},
    {"", "upLeft", string},
    {"", "upRight", string},
    {"", "downLeft", string},
    {"", "downRight", string},
    {"group", "children", widgets},
    {"image", "src", string},
    {"image", "highlightSrc", string},
    {"frame", "src", string},
    {"text", "textStyle", string},
    {"text", "highlightTextStyle", string},
    {"text", "multiline", boolean},
    {"text", "align", string},
    {"text", "valign", string},
    {"text", "maxLength", integer},
    {"text", "echoChar", string},
    {"text", "value", string},
    {"text", "fromRight", boolean},
    {"number", "min", integer},
    {"number", "max", integer},
    {"number", "value", integer},
    {"number", "size", integer},
    {"number", "textStyle", string},
    {"number", "highlightTextStyle", string},
    {"number", "navigate", string},
    {"number", "immediate", boolean},
    {"slider", "min", integer},
    {"slider", "max", integer},
    {"slider", "value", integer},
    {"slider", "fgColor", color},
    {"slider", "navigate", string},
    {"slider", "immediate", boolean},
    {"select", "showAll", boolean},
    {"select", "vertical", boolean},
    {"select", "textStyle", string},
    {"select", "highlightTextStyle", string},
    {"select", "align", string},
    {"select", "valign", string},
    {"select", "navigate", string},
    {"select", "immediate", boolean},
    {"select", "choices", string},
    {"textContainer", "children", lines},
    {"textContainer", "selectTextStyle", string},
    {"textContainer", "selectedLine", integer},
    {"textContainer", "scrollDelta", integer},
};

constexpr Row kRootRows[] = {
    {"", "textStyles", styles}, {"", "scriptingLanguage", string}, {"", "colorTable", string}, {"", "scripts", files},
    {"", "onLoad", script},     {"", "onUnload", script},          {"", "start", string},
};

constexpr Row kStyleRows[] = {
    {"", "name", string},       {"", "font", string},         {"", "size", integer},       {"", "color", color},
    {"", "antialias", boolean}, {"", "gridfit", boolean},     {"", "tracking", integer},   {"", "bgColor", color},
    {"", "underline", boolean}, {"", "letterExtra", integer}, {"", "spaceExtra", integer}, {"", "horScale", integer},
    {"", "encoding", string},
};

constexpr Row kLineRows[] = {{"", "style", string}, {"", "content", string}};

AttributeForm find(const auto& rows, std::string_view type, std::string_view name) {
  for (const Row& row : rows)
    if (row.name == name && (row.type.empty() || row.type == type)) return row.form;
  return unknown;
}

}  // namespace

AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name) {
  switch (kind) {
    case ObjectKind::root:
      if (const AttributeForm form = find(kRootRows, "", name); form != unknown) return form;
      return find(kWidgetRows, type, name);
    case ObjectKind::widget: return find(kWidgetRows, type, name);
    case ObjectKind::style: return find(kStyleRows, "", name);
    case ObjectKind::line: return find(kLineRows, "", name);
    default: return unknown;
  }
}

ObjectKind tableObjectKind(AttributeForm form) {
  switch (form) {
    case widgets: return ObjectKind::widget;
    case styles: return ObjectKind::style;
    case lines: return ObjectKind::line;
    default: return ObjectKind::other;
  }
}
