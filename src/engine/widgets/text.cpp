#include "engine/widgets/text.h"

#include <algorithm>
#include <cstring>

#include "engine/events/value.h"
#include "engine/text/textdraw.h"
#include "engine/text/textmeasure.h"
#include "engine/widgets/linebreak.h"
#include "engine/widgets/textparts.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

// Makes a buffer long enough for so many bytes.
void reach(std::string* buffer, size_t bytes) {
  if (buffer->size() < bytes) buffer->resize(bytes);
}

// ---- drawing

void drawLine(const TextWidget* widget, const TextStyle& style, const char* text) {
  int32_t width, height, ascent;
  textMeasure(style, widget->value, widget->length, &width, &height, &ascent);
  const int32_t x = alignedLeft(widget->bounds, widget->alignment, width);
  const int32_t top = alignedTop(widget->bounds, widget->alignment, height);
  textApplyStyle(style);
  textDraw(text, widget->length, x, hsWrapAdd(top, ascent));
}

// The distance between lines is the style's size, whatever the font's own.
void drawLines(const TextWidget* widget, const TextStyle& style, const char* text) {
  const std::vector<TextLine> lines = breakLines(style, {text, widget->length}, widget->bounds.w);
  int32_t width, height, ascent;
  textMeasure(style, text, 0, &width, &height, &ascent);
  int32_t baseline = alignedTop(widget->bounds, widget->alignment, int32_t(lines.size()) * style.size);
  baseline = hsWrapAdd(baseline, ascent);
  textApplyStyle(style);
  for (const TextLine& line : lines) {
    const int32_t x = alignedLeft(widget->bounds, widget->alignment, line.width);
    textDraw(line.text.data(), uint32_t(line.text.size()), x, baseline);
    baseline = hsWrapAdd(baseline, style.size);
  }
}

const std::optional<TextStyle>& currentStyle(const TextWidget& widget) {
  const bool highlighted = widget.flags & kWidgetHighlighted && widget.styles.highlighted;
  return highlighted ? widget.styles.highlighted : widget.styles.plain;
}

void draw(TextWidget* widget) {
  widgetPaint(widget);
  const auto& style = currentStyle(*widget);
  const char* text = widget->shownText();
  if (!style || !text || widget->length < 1) return;
  if (widget->multiline) {
    drawLines(widget, *style, text);
  } else {
    drawLine(widget, *style, text);
  }
}

// ---- the value

int clear(TextWidget* widget) {
  widget->length = 0;
  widgetInvalidate(widget);
  return 1;
}

void setLength(TextWidget* widget, uint32_t length) {
  widget->length = length;
  reach(&widget->ownedValue, length);
  if (widget->hidesValue()) reach(&widget->echoBuffer, length);
  widget->value = widget->ownedValue.data();
}

// A full text eats the digit.
int append(TextWidget* widget, uint32_t digit) {
  if (widget->length >= widget->maxLength) return 1;
  setLength(widget, widget->length + 1);
  if (widget->hidesValue()) widget->echoBuffer[widget->length - 1] = widget->echoChar;
  widget->ownedValue[widget->length - 1] = char('0' + digit);
  widgetInvalidate(widget);
  return 1;
}

// With fromRight the last `length` bytes of the buffer of maxLength, of which zeros may never have been written.
std::string_view bytesForScripts(TextWidget* widget) {
  if (!widget->value) return {};
  if (!widget->fromRight || !widget->editable) return {widget->value, widget->length};
  const size_t first = widget->maxLength - widget->length;
  const std::string& buffer = widget->ownedValue;
  widget->readBack = first < buffer.size() ? buffer.substr(first, widget->length) : "";
  widget->readBack.resize(widget->length);
  return widget->readBack;
}

int getValue(TextWidget* widget, const Event& event) {
  KuiValue* out = eventPointer<KuiValue>(event);
  if (!out) return 0;
  out->kind = KuiValue::kString;
  out->string = bytesForScripts(widget);
  return 1;
}

// A text that can't be typed into takes on the new one's length; one that can keeps its buffer, and its echo.
int setValue(TextWidget* widget, const Event& event) {
  const KuiValue* in = eventPointer<KuiValue>(event);
  if (!in) return 0;
  if (in->kind != KuiValue::kString) {
    hostLog("Expecting string value\n");
    return 1;
  }
  const auto length = uint32_t(std::min<size_t>(in->string.size(), UINT32_MAX));
  if (widget->editable) {
    setLength(widget, std::min(length, widget->maxLength));
    std::copy_n(in->string.data(), widget->length, widget->ownedValue.data());
  } else {
    widget->ownedValue = std::string(in->string);
    widget->value = widget->ownedValue.data();
    widget->length = widget->maxLength = length;
  }
  widgetInvalidate(widget);
  return 1;
}

// A script can send this to a widget that stays.
int freeText(TextWidget* widget) {
  widget->length = widget->maxLength = 0;
  widget->value = nullptr;
  widget->ownedValue.clear();
  widget->echoBuffer.clear();
  return 1;
}

// ---- styles

int getStyle(const std::optional<TextStyle>& style, const Event& event) {
  const TextStyle** out = eventPointer<const TextStyle*>(event);
  if (!out || !style) return 0;
  *out = &*style;
  return 1;
}

// It shows from the next redraw on.
int setStyle(std::optional<TextStyle>& style, const Event& event) {
  const TextStyle* in = eventPointer<const TextStyle>(event);
  if (!in) return 0;
  style = *in;
  return 1;
}

// ---- creation

// False for a maxLength that is no length.
bool readAttributes(TextWidget* widget) {
  widget->styles = widgetTextStyles(widget);
  widgetAttrBool(widget, "multiline", &widget->multiline);
  widget->alignment = widgetAlign(widget);
  int32_t maxLength;
  widget->editable = widgetAttrInt(widget, "maxLength", &maxLength);
  if (const char* echo = widgetAttrString(widget, "echoChar")) widget->echoChar = echo[0];
  const char* initial = widgetAttrString(widget, "value");
  widgetAttrBool(widget, "fromRight", &widget->fromRight);
  if (widget->editable) {
    if (maxLength < 0) return false;
    widget->maxLength = uint32_t(maxLength);
    setLength(widget, initial ? uint32_t(std::min<size_t>(std::strlen(initial), widget->maxLength)) : 0);
    std::copy_n(initial, widget->length, widget->ownedValue.data());
    return true;
  }
  widget->value = initial;
  if (initial) widget->length = widget->maxLength = uint32_t(std::strlen(initial));
  return true;
}

}  // namespace

int TextWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  switch (event->code) {
    case kFullRedraw:
    case kContentRedraw: draw(this); return 1;
    case kWidgetDestroyed: return freeText(this);
    case kClearKey: return editable ? clear(this) : widgetBaseEvent(this, *event);
    case kDigitKey:
      return editable && event->data & kDigitFlag ? append(this, event->data) : widgetBaseEvent(this, *event);
    case kGetValue: return getValue(this, *event);
    case kSetValue: return setValue(this, *event);
    case kGetStyle: return getStyle(styles.plain, *event);
    case kSetStyle: return setStyle(styles.plain, *event);
    case kGetHighlightStyle: return getStyle(styles.highlighted, *event);
    case kSetHighlightStyle: return setStyle(styles.highlighted, *event);
    default: return widgetBaseEvent(this, *event);
  }
}

std::vector<std::string> textLines(const TextWidget& widget) {
  const auto& style = currentStyle(widget);
  const char* text = widget.shownText();
  if (!style || !text || widget.length < 1) return {};
  const std::string_view whole(text, widget.length);
  if (!widget.multiline) return {std::string(whole)};
  std::vector<std::string> lines;
  for (const TextLine& line : breakLines(*style, whole, widget.bounds.w)) lines.emplace_back(line.text);
  return lines;
}

WidgetPtr<> textCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<TextWidget>(owner, parent, record);
  return widget && readAttributes(widget.get()) ? std::move(widget) : nullptr;
}
