// What frames around highlighted widgets leave on the screen once the highlight has gone.
#include <algorithm>

#include "kit/check/checks.h"

namespace {

constexpr int32_t kUsualFrameWidth = 4;
constexpr size_t kMostComparisons = 20'000'000;  // of widgets; far more than a page for people takes

struct Box {
  int32_t left, top, right, bottom;

  bool isEmpty() const { return left >= right || top >= bottom; }
};

Box boxOf(const CheckedWidget& widget, int32_t grownBy = 0) {
  return {widget.x - grownBy, widget.y - grownBy, widget.x + widget.width + grownBy,
          widget.y + widget.height + grownBy};
}

Box common(const Box& a, const Box& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

bool liesIn(const Box& a, const Box& b) {
  return a.left >= b.left && a.top >= b.top && a.right <= b.right && a.bottom <= b.bottom;
}

bool paintsBackground(const CheckedWidget& widget) {
  const std::string hidden = widget.text("hidden");
  if (hidden == "background" || hidden == "both" || hidden == "yes" || hidden == "true") return false;
  return widget.has("bgColor") || widget.has("background");
}

bool shows(const CheckedWidget& widget) {
  const std::string hidden = widget.text("hidden");
  const bool hidesContent = hidden == "content" || hidden == "both" || hidden == "yes" || hidden == "true";
  return paintsBackground(widget) || ((widget.type == "slider" || widget.type == "image") && !hidesContent);
}

class Highlights {
 public:
  Highlights(const CheckedPage& p, const Find& f) : page(p), find(f) {
    for (size_t i = 1; i < page.widgets.size(); ++i)
      if (shows(page.widgets[i])) shown.push_back(i);
  }

  void check(size_t i) {
    const CheckedWidget& widget = page.widgets[i];
    if (!widget.isTrue("highlightFrame") || widget.type == "slider") return;
    const int32_t width = widget.number("frameWidth").value_or(kUsualFrameWidth);
    if (width < 1 || boxOf(widget).isEmpty()) return;
    checkTop(i, width);
    checkNeighbours(i, width);
  }

 private:
  // From the widget outwards, the player repaints the backgrounds of those that the frame sticks out of at the left, at
  // the right or at the bottom, and that of the next one around them. It never looks whether the frame lies higher.
  void checkTop(size_t i, int32_t width) const {
    const Box outer = boxOf(page.widgets[i], width);
    for (size_t around = i;; around = page.widgets[around].around) {
      const CheckedWidget& widget = page.widgets[around];
      const Box box = boxOf(widget);
      const bool countsAsInside = outer.left >= box.left && outer.right <= box.right && outer.bottom <= box.bottom;
      if (paintsBackground(widget) && countsAsInside) {
        if (std::max(outer.top, 0) < box.top)
          find("frame-trace", page.widgets[i].place("highlightFrame"),
               "when " + page.widgets[i].label + " loses the focus, the player repaints " + widget.label +
                   " only, and the upper edge of the frame, above that, stays on the screen");
        return;
      }
      if (around == 0) return;
    }
  }

  // The background is painted over whatever else lies there.
  void checkNeighbours(size_t i, int32_t width) {
    const CheckedWidget& widget = page.widgets[i];
    for (const size_t other : shown) {
      if (comparisons++ >= kMostComparisons) return;
      const Box touched = common(boxOf(page.widgets[other]), boxOf(widget, width));
      if (touched.isEmpty() || liesIn(touched, boxOf(widget)) || liesAround(other, i)) continue;
      find("frame-trace", widget.place("highlightFrame"),
           "the frame of " + widget.label + " covers a part of " + page.widgets[other].label +
               ", and when the focus goes, the player paints the background there");
      return;
    }
  }

  bool liesAround(size_t outer, size_t inner) const {
    while (inner != 0 && inner != outer) inner = page.widgets[inner].around;
    return inner == outer;
  }

  const CheckedPage& page;
  const Find& find;
  std::vector<size_t> shown;  // widgets that paint something
  size_t comparisons = 0;
};

}  // namespace

void checkHighlights(const CheckedPage& page, const Find& find) {
  Highlights highlights(page, find);
  for (size_t i = 0; i < page.widgets.size(); ++i) highlights.check(i);
}
