// The attributes of a widget with the values that count now.
//
// Most are read from the page whenever they are needed, so the page's value is the one that counts. What widgets keep
// and scripts change is looked up in the widget, and a value that differs from the page's is a script's.
#include <charconv>
#include <cstdio>
#include <utility>

#include "engine/engine.h"
#include "engine/inspect/shown.h"
#include "engine/widgets/image.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/slider.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"

namespace {

struct Value {
  std::string text;
  std::optional<int64_t> number;

  bool operator==(const Value&) const = default;
};

std::string hexColor(uint32_t color) {
  char digits[11];
  std::snprintf(digits, sizeof digits, "0x%08X", unsigned(color));
  return digits;
}

Value integerValue(int64_t number) { return {std::to_string(number), number}; }
Value booleanValue(bool on) { return {on ? "true" : "false", on}; }
Value colorValue(uint32_t color) {
  return {currentDisplay().depth() == 8 && color < 256 ? std::to_string(color) : hexColor(color), color};
}
Value textValue(std::string text) { return {std::move(text), std::nullopt}; }
Value countValue(int64_t count) { return {"", count}; }

// ---- what the page says

std::optional<PageAttribute> find(const PageObject& record, std::string_view name) {
  for (uint32_t i = 0; i < record.attributeCount(); ++i) {
    const PageAttribute attribute = pageAttribute(record, i);
    if (attribute.name && attribute.name == name) return attribute;
  }
  return std::nullopt;
}

// Whether the reader of that kind takes it without a complaint; those that it doesn't take it must not be asked about,
// as it would log.
bool takes(AttributeKind kind, PageTag tag) {
  switch (kind) {
    case AttributeKind::integer:
    case AttributeKind::boolean: return tag == PageTag::integer || tag == PageTag::boolean || tag == PageTag::string;
    case AttributeKind::color: return tag == PageTag::integer || tag == PageTag::color;
    case AttributeKind::string: return tag == PageTag::string;
    case AttributeKind::script: return tag == PageTag::script;
    default: return tag == PageTag::table;
  }
}

std::optional<Value> read(AttributeKind kind, const PageAttribute& attribute) {
  if (!takes(kind, PageTag(attribute.tag))) return std::nullopt;
  int32_t integer;
  bool on;
  uint32_t color;
  const char* text;
  PageScript script;
  PageTable table;
  switch (kind) {
    case AttributeKind::integer:
      if (attrInt(attribute, &integer)) return integerValue(integer);
      break;
    case AttributeKind::boolean:
      if (attrBool(attribute, &on)) return booleanValue(on);
      break;
    case AttributeKind::color:
      if (attrColor(attribute, &color)) return colorValue(color);
      break;
    case AttributeKind::string:
      if (attrString(attribute, &text)) return textValue(text);
      break;
    case AttributeKind::script:
      if (attrScript(attribute, &script)) return countValue(int64_t(script.size()));
      break;
    default:
      if (attrTable(attribute, &table)) return countValue(table.count());
  }
  return std::nullopt;
}

// The table's word for it; a number if it is one.
Value defaultOf(const AttributeRow& row) {
  Value value = textValue(std::string(row.byDefault));
  if (row.kind == AttributeKind::boolean) return booleanValue(row.byDefault == "true");
  int64_t number;
  const char* end = row.byDefault.data() + row.byDefault.size();
  const auto parsed = std::from_chars(row.byDefault.data(), end, number);
  if (!row.byDefault.empty() && parsed.ec == std::errc() && parsed.ptr == end) value.number = number;
  return value;
}

// ---- what widgets keep

std::string joined(const std::vector<SelectChoice>& choices, const char* original) {
  std::string text;
  const char separator = original && original[0] ? original[0] : '/';
  for (const SelectChoice& choice : choices) text += separator + choice.text;
  return text;
}

const char* hiddenWord(const Widget* widget) {
  const bool content = widget->flags & kWidgetContentHidden, background = widget->flags & kWidgetBackgroundHidden;
  return content && background ? "both" : content ? "content" : background ? "background" : "none";
}

Value styleValue(const Widget* widget, const std::optional<TextStyle>& style, StringAttribute attribute) {
  const char* wanted = attrPlainString(widget->record, attribute);
  if (!style) return textValue(wanted ? wanted : "");
  const TextStyle* named = wanted ? styleFind(frameOf(widget), wanted) : nullptr;
  if (named && *named == *style) return textValue(wanted);
  const std::string other = styleName(widget, &*style);
  return textValue(other.empty() ? kUnnamedStyle : other);
}

const TextStylePair* stylesOf(const Widget* widget) {
  if (const auto* text = dynamic_cast<const TextWidget*>(widget)) return &text->styles;
  if (const auto* number = dynamic_cast<const NumberWidget*>(widget)) return &number->styles;
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget)) return &select->styles;
  return nullptr;
}

std::optional<Value> keptByText(const TextWidget* text, std::string_view name) {
  if (name == "value") return textValue(text->value ? std::string(text->value, text->length) : "");
  return std::nullopt;
}

std::optional<Value> keptByRange(const RangeWidget* range, std::string_view name) {
  if (name == "value") return integerValue(range->value);
  if (name == "min") return integerValue(range->minimum);
  if (name == "max") return integerValue(range->maximum);
  const auto* slider = dynamic_cast<const SliderWidget*>(range);
  if (slider && name == "fgColor") return colorValue(slider->fillColor);
  if (slider && name == "bgColor") return colorValue(slider->restColor);
  return std::nullopt;
}

std::optional<Value> keptByImage(const ImageWidget* image, std::string_view name) {
  if (name == "src") return textValue(image->src.value_or(""));
  if (name == "highlightSrc") return textValue(image->highlightSrc.value_or(""));
  return std::nullopt;
}

// Nothing for what the widget reads from the page each time.
std::optional<Value> kept(const Widget* widget, std::string_view name) {
  std::optional<Value> value;
  if (const auto* text = dynamic_cast<const TextWidget*>(widget)) value = keptByText(text, name);
  if (const auto* range = dynamic_cast<const RangeWidget*>(widget)) value = keptByRange(range, name);
  if (const auto* image = dynamic_cast<const ImageWidget*>(widget)) value = keptByImage(image, name);
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget); select && name == "choices")
    value = textValue(joined(select->choices, attrPlainString(widget->record, "choices")));
  if (const auto* list = dynamic_cast<const TextContainerWidget*>(widget); list && name == "selectedLine")
    value = integerValue(list->selectedLine);
  if (const TextStylePair* styles = stylesOf(widget)) {
    if (name == "textStyle") value = styleValue(widget, styles->plain, "textStyle");
    if (name == "highlightTextStyle") value = styleValue(widget, styles->highlighted, "highlightTextStyle");
  }
  if (value) return value;
  if (name == "bgColor" && widget->flags & kWidgetHasBgColor) return colorValue(widget->bgColor);
  if (name == "background") return textValue(widget->background.value_or(""));
  if (name == "hidden") return textValue(hiddenWord(widget));
  if (name == "frameWidth" && widget->flags & kWidgetHighlightFrame) return integerValue(widget->frameWidth);
  return std::nullopt;
}

// ---- what a widget is made with, where the table's word is no value

std::optional<Value> madeWith(const Widget* widget, const AttributeRow& row) {
  if (row.name == "value" && dynamic_cast<const RangeWidget*>(widget)) {
    const auto minimum = find(widget->record, "min");
    const auto value = minimum ? read(AttributeKind::integer, *minimum) : std::nullopt;
    return value ? value : integerValue(1);
  }
  if (row.name == "fgColor") return colorValue(standardColor(kColorWhite));
  if (row.name == "bgColor" && dynamic_cast<const SliderWidget*>(widget)) return colorValue(standardColor(kColorBlack));
  return std::nullopt;
}

// Words of the page that mean the same as the one that the view has.
std::string plainHidden(const std::string& word) {
  if (word == "yes" || word == "true" || word == "both") return "both";
  return word == "content" || word == "background" ? word : "none";
}

// An editable text takes no more than it has space for, and a list of choices no empty ones.
bool sameValue(const Widget* widget, const AttributeRow& row, const Value& now, const Value& before) {
  if (now == before) return true;
  if (row.name == "hidden") return now.text == plainHidden(before.text);
  if (row.name == "value")
    if (const auto* text = dynamic_cast<const TextWidget*>(widget); text && text->editable)
      return now.text == before.text.substr(0, text->maxLength);
  if (row.name == "choices") {
    SelectChoice piece;
    std::vector<SelectChoice> choices;
    for (size_t i = 1; i <= before.text.size(); ++i) {
      const bool ends = i == before.text.size() || before.text[i] == before.text[0];
      if (!ends) piece.text += before.text[i];
      if (ends && !piece.text.empty()) choices.push_back(std::exchange(piece, {}));
    }
    return now.text == joined(choices, before.text.c_str());
  }
  return false;
}

AttributeView viewOf(const Widget* widget, const AttributeRow& row) {
  const auto attribute = find(widget->record, row.name);
  const auto fromPage = attribute ? read(row.kind, *attribute) : std::nullopt;
  const auto made = madeWith(widget, row);
  const Value before = fromPage ? *fromPage : made ? *made : defaultOf(row);
  const auto now = kept(widget, row.name);

  ValueOrigin origin = ValueOrigin::byDefault;
  if (fromPage) origin = ValueOrigin::page;
  if (attribute && !fromPage) origin = ValueOrigin::refused;
  const bool unset = !fromPage && now && now->text.empty() && !now->number;
  if (now && !unset && !sameValue(widget, row, *now, before)) origin = ValueOrigin::changed;
  const Value& value = now && !unset ? *now : before;
  return {std::string(row.name), row.kind, origin, value.text, value.number};
}

// Whether objects of the kind read it by this row: a type's own comes in place of what all have.
bool isFor(const AttributeRow& row, bool isRoot, std::string_view type) {
  if (row.owner == AttributeOwner::root) return isRoot;
  if (row.owner != AttributeOwner::widget) return false;
  if (!row.type.empty()) return row.type == type;
  return &row == attributeRow(AttributeOwner::widget, type, row.name);
}

}  // namespace

std::vector<AttributeView> attributesOf(const Widget* widget) {
  const bool isRoot = isRootWidget(widget);
  const std::string_view type = widgetKindName(kindOf(widget));
  std::vector<AttributeView> views;
  for (const AttributeRow& row : attributeRows())
    if (isFor(row, isRoot, type)) views.push_back(viewOf(widget, row));
  return views;
}

std::vector<AttributeView> inspectAttributes(Engine& engine, WidgetId id) {
  const EngineScope here(engine);
  const Widget* widget = widgetById(engine, id);
  return widget ? attributesOf(widget) : std::vector<AttributeView>{};
}
