// What is on top at a point, and why a widget is not to be seen.
//
// Widgets paint in the order in which they were last drawn. Each paints its rectangle whole, with its own background or
// that of the nearest widget around it that has one, or else with the transparent colour; so even a text without a
// background covers what was drawn before it.
#include <algorithm>
#include <unordered_set>

#include "engine/engine.h"
#include "engine/inspect/shown.h"
#include "engine/widgets/image.h"
#include "engine/widgets/select.h"
#include "engine/widgets/slider.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"
#include "gfx/vector/hsregion.h"

namespace {

// ---- rectangles

// The part on the screen; empty for a rectangle without a size.
hsIntRect onScreen(const Bounds& b) {
  const auto cut = [](int64_t v, int32_t most) { return int32_t(std::clamp<int64_t>(v, 0, most)); };
  if (b.w < 1 || b.h < 1) return {0, 0, 0, 0};
  return {cut(b.x, kScreenWidth), cut(b.y, kScreenHeight), cut(int64_t{b.x} + b.w, kScreenWidth),
          cut(int64_t{b.y} + b.h, kScreenHeight)};
}

bool hasPoint(const Bounds& b, int64_t x, int64_t y) {
  return x >= b.x && x < int64_t{b.x} + b.w && y >= b.y && y < int64_t{b.y} + b.h;
}

bool isHidden(const Widget* widget) { return widget->flags & kWidgetContentHidden; }

// What the widget certainly paints over. A picture may be smaller or transparent, a bar may leave a gap, and choices
// side by side paint no background.
hsRegion paintedBy(const Widget* widget) {
  const auto* select = dynamic_cast<const SelectWidget*>(widget);
  hsRegion painted;
  if (dynamic_cast<const SliderWidget*>(widget) || (select && select->showAll && !select->vertical)) return painted;
  painted.SetRect(onScreen(widget->bounds));
  const Widget* background = backgroundOf(widget);
  if (!background) return painted;
  if (!(background->flags & kWidgetHasBgColor)) painted.SetEmpty();
  painted.Intersect(painted, onScreen(background->bounds));
  return painted;
}

// ---- reasons

bool isTextKind(const Widget* widget) {
  switch (kindOf(widget)) {
    case WidgetKind::text:
    case WidgetKind::number:
    case WidgetKind::select:
    case WidgetKind::textContainer: return true;
    default: return false;
  }
}

// Text on one line begins at the corner and is not cut; an image takes its size from the picture.
bool needsSize(const Widget* widget) {
  if (const auto* text = dynamic_cast<const TextWidget*>(widget)) return text->multiline;
  if (dynamic_cast<const TextContainerWidget*>(widget)) return true;
  return !isTextKind(widget) && !dynamic_cast<const ImageWidget*>(widget);
}

bool isTransparent(uint32_t color) { return color == standardColor(kColorTransparent); }

class Reasons {
 public:
  // Whether it is covered, where somebody knows already; else it is found out, and by whom.
  Reasons(Engine& e, const Widget* w, std::optional<bool> covered = {}) : engine(e), widget(w), isCovered(covered) {}

  std::vector<UnseenReason> find() {
    if (isHidden(widget)) {
      add(Unseen::contentHidden);
    } else if (widget->drawnAs == 0) {
      add(Unseen::notDrawn);
    }
    findPlace();
    if (isTextKind(widget)) {
      findText();
    } else if (dynamic_cast<const ImageWidget*>(widget)) {
      findPicture(pictureShown(widget));
    } else if (!dynamic_cast<const SliderWidget*>(widget)) {
      findBox();
    }
    return std::move(reasons);
  }

 private:
  void add(Unseen why, std::string what = "") { reasons.push_back({why, {}, std::move(what)}); }

  void findPlace() {
    const Bounds& b = widget->bounds;
    if (b.w < 1 || b.h < 1) {
      if (needsSize(widget)) add(Unseen::zeroSize);
      return;
    }
    const hsIntRect seen = onScreen(b);
    if (seen.IsEmpty()) return add(Unseen::outsideScreen);
    if (isCovered) {
      if (*isCovered) add(Unseen::covered);
    } else if (widget->drawnAs != 0) {
      findCover(seen);
    }
  }

  void findCover(const hsIntRect& seen) {
    hsRegion left(seen);
    std::vector<WidgetId> by;
    for (const Widget* other : walkWidgets(engine)) {
      if (other->drawnAs <= widget->drawnAs) continue;
      const hsRegion painted = paintedBy(other);
      hsRegion common;
      common.Intersect(painted, seen);
      if (common.IsEmpty()) continue;
      by.push_back(other->id);
      left.Difference(left, painted);
    }
    if (left.IsEmpty()) reasons.push_back({Unseen::covered, std::move(by), ""});
  }

  void findText() {
    const auto* select = dynamic_cast<const SelectWidget*>(widget);
    const auto* list = dynamic_cast<const TextContainerWidget*>(widget);
    if ((select && select->choices.empty()) || (list && list->lines.empty())) return add(Unseen::nothingToShow);
    if (textShown(widget).empty()) add(Unseen::emptyText);
    const TextStyle* style = styleShown(widget);
    if (!style) return findMissingStyle();
    findFont(*style);
    findColor(*style);
  }

  void findMissingStyle() {
    const StringAttribute attribute = styleAttributeShown(widget);
    const char* name = attribute ? attrPlainString(widget->record, attribute) : nullptr;
    add(Unseen::noStyle, name ? name : "");
  }

  void findFont(const TextStyle& style) {
    switch (fontStateOf(style.font)) {
      case FontState::missing: return add(Unseen::fontMissing, fontNamed(style));
      case FontState::unusable: return add(Unseen::fontUnusable, style.font->name);
      default: return;
    }
  }

  // The file that the page gives for the style, which holds no name itself.
  std::string fontNamed(const TextStyle& style) {
    const std::string name = styleName(widget, &style);
    for (const StyleView& view : inspectStyles(engine))
      if (frameOf(widget) && view.frame == frameOf(widget)->id && view.name == name) return view.font;
    return "";
  }

  void findColor(const TextStyle& style) {
    if (isTransparent(style.color)) add(Unseen::transparentColor);
    if (style.styleFlags & kTextStyleBackground) {
      if (style.color == style.bgColor) add(Unseen::sameColor);
      return;
    }
    const Widget* background = backgroundOf(widget);
    if (background && !background->background && background->bgColor == style.color) add(Unseen::sameColor);
  }

  void findPicture(const std::string& name) {
    if (name.empty()) return add(Unseen::nothingToShow);
    const ImageRefusal refusal = currentImages().refusalOf(name.c_str());
    if (refusal != ImageRefusal::none) reasons.push_back({Unseen::pictureRefused, {}, name, refusal});
  }

  void findBox() {
    const bool frameShows = widget->flags & kWidgetHighlightFrame && widget->flags & kWidgetHighlighted;
    if (frameShows) return;
    if (!showsBackground(widget)) return add(Unseen::nothingToShow);
    if (widget->background) return findPicture(*widget->background);
    if (isTransparent(widget->bgColor)) return add(Unseen::transparentColor);
    const Widget* under = backgroundOf(widget->parentWidget);
    if (under && !under->background && under->bgColor == widget->bgColor) add(Unseen::sameColor);
  }

  Engine& engine;
  const Widget* widget;
  const std::optional<bool> isCovered;
  std::vector<UnseenReason> reasons;
};

// From what was drawn last down, over all that was painted by then.
std::unordered_set<const Widget*> coveredAmong(std::vector<Widget*> widgets) {
  std::erase_if(widgets, [](const Widget* widget) { return widget->drawnAs == 0; });
  std::sort(widgets.begin(), widgets.end(), [](const Widget* a, const Widget* b) { return a->drawnAs > b->drawnAs; });
  std::unordered_set<const Widget*> covered;
  hsRegion painted;
  for (const Widget* widget : widgets) {
    const hsRegion seen(onScreen(widget->bounds));
    hsRegion left;
    left.Difference(seen, painted);
    if (!seen.IsEmpty() && left.IsEmpty()) covered.insert(widget);
    painted.Union(painted, paintedBy(widget));
  }
  return covered;
}

}  // namespace

std::vector<WidgetId> widgetsAt(Engine& engine, int32_t x, int32_t y) {
  const EngineScope here(engine);
  std::vector<const Widget*> found;
  for (const Widget* widget : walkWidgets(engine))
    if (hasPoint(widget->bounds, x, y)) found.push_back(widget);
  std::reverse(found.begin(), found.end());  // of those that were not drawn, the innermost first
  std::stable_sort(found.begin(), found.end(), [](const Widget* a, const Widget* b) {
    if (isHidden(a) != isHidden(b)) return isHidden(b);
    return a->drawnAs > b->drawnAs;
  });
  std::vector<WidgetId> ids;
  for (const Widget* widget : found) ids.push_back(widget->id);
  return ids;
}

std::vector<UnseenReason> whyNotSeen(Engine& engine, WidgetId id) {
  const EngineScope here(engine);
  const Widget* widget = widgetById(engine, id);
  return widget ? Reasons(engine, widget).find() : std::vector<UnseenReason>{};
}

std::vector<std::vector<UnseenReason>> whyNotSeen(Engine& engine) {
  const EngineScope here(engine);
  const std::vector<Widget*> widgets = walkWidgets(engine);
  const auto covered = coveredAmong(widgets);
  std::vector<std::vector<UnseenReason>> all;
  for (const Widget* widget : widgets) all.push_back(Reasons(engine, widget, covered.contains(widget)).find());
  return all;
}
