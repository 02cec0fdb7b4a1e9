#include "engine/widgets/select.h"

#include <algorithm>
#include <string_view>

#include "engine/events/value.h"
#include "engine/text/textdraw.h"
#include "engine/text/textmeasure.h"
#include "engine/widgets/navigatekind.h"
#include "engine/widgets/textparts.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

constexpr std::string_view kSeparator = " / ";

// ---- drawing

const SelectChoice& measured(SelectChoice& choice, const TextStyle& style) {
  if (!choice.measured)
    textMeasure(style, choice.text.data(), uint32_t(choice.text.size()), &choice.width, &choice.height, &choice.ascent);
  choice.measured = true;
  return choice;
}

void drawAt(const TextStyle& style, std::string_view text, int32_t x, int32_t baseline) {
  textApplyStyle(style);
  textDraw(text.data(), uint32_t(text.size()), x, baseline);
}

void drawCurrent(SelectWidget* widget) {
  widgetPaint(widget);
  const auto& style = widget->flags & kWidgetHighlighted ? widget->styles.highlighted : widget->styles.plain;
  if (!style || widget->choices.empty()) return;
  const SelectChoice& choice = measured(widget->choices[widget->current], *style);
  const int32_t x = alignedLeft(widget->bounds, widget->alignment, choice.width);
  const int32_t top = alignedTop(widget->bounds, widget->alignment, choice.height);
  drawAt(*style, choice.text, x, hsWrapAdd(top, choice.ascent));
}

// Where all choices show, both styles are there.
const TextStyle& styleOf(const SelectWidget* widget, size_t place) {
  return place == widget->current ? *widget->styles.highlighted : *widget->styles.plain;
}

struct Separator {
  int32_t width, height, ascent;
};

Separator separatorOf(const SelectWidget* widget) {
  Separator s;
  textMeasure(*widget->styles.plain, kSeparator.data(), uint32_t(kSeparator.size()), &s.width, &s.height, &s.ascent);
  return s;
}

void drawRow(SelectWidget* widget) {
  const Separator separator = separatorOf(widget);
  const RowSize row = selectRowSize(widget);
  int32_t x = alignedLeft(widget->bounds, widget->alignment, row.width);
  const int32_t top = alignedTop(widget->bounds, widget->alignment, row.height);
  for (size_t i = 0; i < widget->choices.size(); ++i) {
    const SelectChoice& choice = widget->choices[i];
    if (i != 0) {
      drawAt(*widget->styles.plain, kSeparator, x, hsWrapAdd(top, separator.ascent));
      x = hsWrapAdd(x, separator.width);
    }
    drawAt(styleOf(widget, i), choice.text, x, hsWrapAdd(top, choice.ascent));
    x = hsWrapAdd(x, choice.width);
  }
}

// The block is placed as if all choices were as high as the first.
void drawColumn(SelectWidget* widget) {
  widgetPaint(widget);
  int32_t y = widget->bounds.y;
  for (size_t i = 0; i < widget->choices.size(); ++i) {
    const TextStyle& style = styleOf(widget, i);
    const SelectChoice& choice = measured(widget->choices[i], style);
    if (i == 0) {
      const auto block = hsWrapMul(int32_t(widget->choices.size()), choice.height);
      y = alignedTop(widget->bounds, widget->alignment, block);
    }
    const int32_t x = alignedLeft(widget->bounds, widget->alignment, choice.width);
    drawAt(style, choice.text, x, hsWrapAdd(y, choice.ascent));
    y = hsWrapAdd(y, choice.height);
  }
}

void draw(SelectWidget* widget) {
  if (!widget->showAll) return drawCurrent(widget);
  if (widget->vertical) return drawColumn(widget);
  drawRow(widget);
}

// ---- the current choice

int selectKey(SelectWidget* widget, const Event& event) {
  const NavigateKind kind = navigateKind(widget, event);
  if (kind == NavigateKind::none) return widgetBaseEvent(widget, event);
  const auto count = uint32_t(widget->choices.size());
  if (kind == NavigateKind::eat || count == 0) return 1;

  // In a column "next" is upwards, against the order of the choices.
  const bool forward = (kind == NavigateKind::next) != widget->vertical;
  const uint32_t chosen = (widget->current + (forward ? 1 : count - 1)) % count;
  if (chosen == widget->current) return 1;
  widget->current = chosen;
  if (widget->flags & kWidgetImmediate) eventSendSimple(widget, kRunOnChange, 0);
  widgetInvalidate(widget);
  return 1;
}

int getValue(const SelectWidget* widget, const Event& event) {
  return widget->choices.empty() ? 0 : eventAnswerInteger(event, int32_t(widget->current));
}

// What is wrong goes to the standard output, unlike the complaints of all other widgets.
int setValue(SelectWidget* widget, const Event& event) {
  const KuiValue* in = eventPointer<KuiValue>(event);
  if (!in || widget->choices.empty()) return 0;
  if (in->kind != KuiValue::kInteger) {
    hsPrintStatus("Expecting integer value\n");
  } else if (in->integer < 0 || size_t(in->integer) >= widget->choices.size()) {
    hsPrintStatus("New value out of range: %d\n", in->integer);
  } else {
    widget->current = uint32_t(in->integer);
    widgetInvalidate(widget);
  }
  return 1;
}

// ---- the list of choices

int addChoice(SelectWidget* widget, const Event& event) {
  const KuiValue* in = eventPointer<KuiValue>(event);
  if (!in) return 0;
  if (in->kind != KuiValue::kString) {
    hostLog("Expecting string value\n");
    return 0;
  }
  widget->choices.push_back({std::string(in->string)});
  widgetInvalidate(widget);
  return 1;
}

int freeChoices(SelectWidget* widget) {
  widget->choices.clear();
  widget->current = 0;
  return 1;
}

// The first character separates the rest; pieces of nothing are no choices.
void readChoices(SelectWidget* widget) {
  const char* attribute = widgetAttrString(widget, "choices");
  if (!attribute || !attribute[0]) return;
  const char separator = attribute[0];
  for (std::string_view rest = attribute + 1; !rest.empty();) {
    const std::string_view piece = rest.substr(0, rest.find(separator));
    if (!piece.empty()) widget->choices.push_back({std::string(piece)});
    rest.remove_prefix(std::min(rest.size(), piece.size() + 1));
  }
}

void readAttributes(SelectWidget* widget) {
  widgetAttrBool(widget, "showAll", &widget->showAll);
  widgetAttrBool(widget, "vertical", &widget->vertical);
  widget->styles = widgetTextStyles(widget);
  widget->alignment = widgetAlign(widget);
  widgetReadNavigate(widget);
}

}  // namespace

int SelectWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  switch (event->code) {
    case kDirectionKey: return selectKey(this, *event);
    case kFullRedraw:
    case kContentRedraw: draw(this); return 1;
    case kWidgetDestroyed: return freeChoices(this);
    case kGetValue: return getValue(this, *event);
    case kSetValue: return setValue(this, *event);
    case kGetMinimum: return 0;
    // The answer itself, not through a pointer.
    case kGetMaximum: return int(choices.size()) - 1;
    case kAddChoice: return addChoice(this, *event);
    default: return widgetBaseEvent(this, *event);
  }
}

RowSize selectRowSize(SelectWidget* widget) {
  const int32_t between = separatorOf(widget).width;
  RowSize row{0, 0};
  for (size_t i = 0; i < widget->choices.size(); ++i) {
    const SelectChoice& choice = measured(widget->choices[i], styleOf(widget, i));
    if (i != 0) row.width = hsWrapAdd(row.width, between);
    row.width = hsWrapAdd(row.width, choice.width);
    row.height = std::max(row.height, choice.height);
  }
  return row;
}

WidgetPtr<> selectCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<SelectWidget>(owner, parent, record);
  if (!widget) return nullptr;
  readAttributes(widget.get());
  if (widget->showAll && !(widget->styles.plain && widget->styles.highlighted)) {
    hostLog("Both 'textStyle' and 'highlightTextStyle' must be present when 'showAll' is true\n");
    return nullptr;
  }
  readChoices(widget.get());
  return widget;
}
