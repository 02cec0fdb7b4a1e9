#include "engine/widgets/image.h"

#include "engine/images/imagedraw.h"

namespace {

bool isHighlighted(const Widget* widget) { return widget->flags & kWidgetHighlighted; }

// A width or height of 0 takes on the picture's from the first draw on.
void draw(ImageWidget* widget) {
  widgetPaint(widget);
  const auto& name = isHighlighted(widget) ? widget->highlightSrc : widget->src;
  if (name) imageDraw(name->c_str(), 0, 0, &widget->bounds, false);
}

int getName(const std::optional<std::string>& name, const Event& event) {
  const char** out = eventPointer<const char*>(event);
  if (!out) return 0;
  *out = name ? name->c_str() : nullptr;
  return 1;
}

// Only a name that shows now is worth a redraw.
int setName(ImageWidget* widget, std::optional<std::string>& name, const Event& event, bool shows) {
  const char* text = eventPointer<const char>(event);
  if (!text) return 0;
  if (name == text) return 1;
  name = text;
  if (shows) widgetInvalidate(widget);
  return 1;
}

}  // namespace

int ImageWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  switch (event->code) {
    case kFullRedraw:
    case kContentRedraw: draw(this); return 1;
    case kWidgetDestroyed: return 1;
    case kGetSrc: return getName(src, *event);
    case kSetSrc: return setName(this, src, *event, !isHighlighted(this));
    case kGetHighlightSrc: return getName(highlightSrc, *event);
    case kSetHighlightSrc: return setName(this, highlightSrc, *event, isHighlighted(this));
    default: return widgetBaseEvent(this, *event);
  }
}

WidgetPtr<> imageWidgetCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<ImageWidget>(owner, parent, record);
  if (!widget) return nullptr;
  if (const char* name = widgetAttrString(widget.get(), "src")) widget->src = name;
  if (const char* name = widgetAttrString(widget.get(), "highlightSrc")) widget->highlightSrc = name;
  return widget;
}
