#include "engine/widgets/text.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "engine/events/value.h"
#include "engine/text/textdraw.h"
#include "engine/text/textmeasure.h"
#include "engine/widgets/linebreak.h"
#include "engine/widgets/textparts.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

constexpr uint32_t kMostBytes = 1 << 20;  // of one text

// Zeros; null when that is more memory than a text may have.
std::unique_ptr<char[]> newBuffer(uint32_t bytes) {
  if (bytes > kMostBytes) return nullptr;
  return std::unique_ptr<char[]>(new (std::nothrow) char[bytes]());
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

void draw(TextWidget* widget) {
  widgetPaint(widget);
  const bool highlighted = widget->flags & kWidgetHighlighted && widget->styles.highlighted;
  const auto& style = highlighted ? widget->styles.highlighted : widget->styles.plain;
  const char* text = widget->echoBuffer ? widget->echoBuffer.get() : widget->value;
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

// A full text eats the digit.
int append(TextWidget* widget, uint32_t digit) {
  if (widget->length >= widget->maxLength) return 1;
  if (widget->echoBuffer) widget->echoBuffer[widget->length] = widget->echoChar;
  widget->ownedValue[widget->length] = char('0' + digit);
  ++widget->length;
  widgetInvalidate(widget);
  return 1;
}

int getValue(const TextWidget* widget, const Event& event) {
  KuiValue* out = eventPointer<KuiValue>(event);
  if (!out) return 0;
  out->kind = KuiValue::kString;
  out->string = {};
  if (widget->value)
    out->string = {widget->value + (widget->fromRight ? widget->maxLength - widget->length : 0), widget->length};
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
    widget->length = std::min(length, widget->maxLength);
    std::copy_n(in->string.data(), widget->length, widget->ownedValue.get());
  } else {
    std::unique_ptr<char[]> bytes = newBuffer(length);
    if (!bytes) return 1;
    std::copy_n(in->string.data(), length, bytes.get());
    widget->ownedValue = std::move(bytes);
    widget->value = widget->ownedValue.get();
    widget->length = widget->maxLength = length;
  }
  widgetInvalidate(widget);
  return 1;
}

// A script can send this to a widget that stays.
int freeText(TextWidget* widget) {
  widget->length = widget->maxLength = 0;
  widget->value = nullptr;
  widget->ownedValue.reset();
  widget->echoBuffer.reset();
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

bool makeBuffers(TextWidget* widget, const char* initial) {
  widget->ownedValue = newBuffer(widget->maxLength);
  if (!widget->ownedValue) return false;
  if (widget->echoChar && !(widget->echoBuffer = newBuffer(widget->maxLength))) return false;
  widget->value = widget->ownedValue.get();
  if (!initial) return true;
  widget->length = uint32_t(std::min<size_t>(std::strlen(initial), widget->maxLength));
  std::copy_n(initial, widget->length, widget->ownedValue.get());
  return true;
}

// False when memory runs out.
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
    widget->maxLength = uint32_t(maxLength);
    return makeBuffers(widget, initial);
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

Widget* textCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto* widget = widgetCreate<TextWidget>(owner, parent, record);
  if (!widget || readAttributes(widget)) return widget;
  widgetDestroy(widget);
  return nullptr;
}
