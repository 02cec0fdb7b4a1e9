#include "engine/inspect/shown.h"

#include "engine/widgets/image.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"
#include "gfx/text/hsgscalercontextt2k.h"

namespace {

bool isHighlighted(const Widget* widget) { return widget->flags & kWidgetHighlighted; }

const TextStyle* orNull(const std::optional<TextStyle>& style) { return style ? &*style : nullptr; }

// A highlighted one without a style for that shows nothing.
const TextStyle* strictStyle(const Widget* widget, const TextStylePair& styles) {
  return orNull(isHighlighted(widget) ? styles.highlighted : styles.plain);
}

const ContainerLine* lineShown(const TextContainerWidget* list) {
  const auto line = size_t(list->selectedLine) - 1;
  if (list->lines.empty()) return nullptr;
  return line < list->lines.size() ? &list->lines[line] : &list->lines[0];
}

}  // namespace

const TextStyle* styleShown(const Widget* widget) {
  if (const auto* text = dynamic_cast<const TextWidget*>(widget)) {
    const bool highlighted = isHighlighted(text) && text->styles.highlighted;
    return orNull(highlighted ? text->styles.highlighted : text->styles.plain);
  }
  if (const auto* number = dynamic_cast<const NumberWidget*>(widget)) return strictStyle(number, number->styles);
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget))
    return select->showAll ? orNull(select->styles.highlighted) : strictStyle(select, select->styles);
  if (const auto* list = dynamic_cast<const TextContainerWidget*>(widget)) {
    const ContainerLine* line = lineShown(list);
    if (!line) return nullptr;
    return list->selectedLine != 0 && list->selectTextStyle ? list->selectTextStyle : line->style;
  }
  return nullptr;
}

std::string styleName(const Widget* widget, const TextStyle* style) {
  if (!style || !frameOf(widget)) return "";
  const StringAttribute attribute = styleAttributeShown(widget);
  const char* wanted = attribute ? attrPlainString(widget->record, attribute) : nullptr;
  const TextStyle* its = wanted ? styleFind(frameOf(widget), wanted) : nullptr;
  if (its && *its == *style) return wanted;
  for (const NamedStyle& named : frameOf(widget)->textStyles)
    if (named.style == *style) return named.name;
  return "";
}

StringAttribute styleAttributeShown(const Widget* widget) {
  const bool highlighted = isHighlighted(widget);
  if (const auto* text = dynamic_cast<const TextWidget*>(widget))
    return highlighted && text->styles.highlighted ? StringAttribute("highlightTextStyle") : "textStyle";
  if (dynamic_cast<const NumberWidget*>(widget))
    return highlighted ? StringAttribute("highlightTextStyle") : "textStyle";
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget))
    return highlighted || select->showAll ? StringAttribute("highlightTextStyle") : "textStyle";
  return nullptr;
}

bool showsBackground(const Widget* widget) {
  return !(widget->flags & kWidgetBackgroundHidden) && (widget->flags & kWidgetHasBgColor || widget->background);
}

const Widget* backgroundOf(const Widget* widget) {
  while (widget && !showsBackground(widget)) widget = widget->parentWidget;
  return widget;
}

std::string textShown(const Widget* widget) {
  if (const auto* text = dynamic_cast<const TextWidget*>(widget)) {
    const char* bytes = text->shownText();
    return bytes ? std::string(bytes, text->length) : "";
  }
  if (const auto* number = dynamic_cast<const NumberWidget*>(widget)) return numberFigures(*number);
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget))
    return select->choices.empty() ? "" : select->choices[select->current].text;
  if (const auto* list = dynamic_cast<const TextContainerWidget*>(widget)) {
    const ContainerLine* line = lineShown(list);
    return line && line->content ? line->content : "";
  }
  return "";
}

std::string pictureShown(const Widget* widget) {
  const auto* image = dynamic_cast<const ImageWidget*>(widget);
  if (!image) return "";
  return (isHighlighted(image) ? image->highlightSrc : image->src).value_or("");
}

FontState fontStateOf(const FontEntry* font) {
  if (!font) return FontState::missing;
  switch (hsFontKnownState(font->scalerFont)) {
    case hsFontState::opens: return FontState::usable;
    case hsFontState::fails: return FontState::unusable;
    case hsFontState::notTried: break;
  }
  return FontState::unused;
}
