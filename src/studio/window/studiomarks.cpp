// What is drawn over the screen: the widget that is chosen, and the focus map.
#include <QLabel>

#include "studio/inspector/focusmap.h"
#include "studio/window/look.h"
#include "studio/window/studiowindow.h"

namespace {

QRectF rectOf(const Bounds& b) { return QRectF(b.x, b.y, b.w, b.h); }

struct Marks {
  std::vector<ScreenMark> marks;
  std::vector<ScreenArrow> arrows;

  void add(const FocusStop& stop) {
    const bool isReached = stop.reach == FocusReach::arrows;
    if (stop.isHidden && !isReached) return;  // it may lie where another is, and isn't meant to be reached now
    marks.push_back({rectOf(stop.bounds), isReached ? look().accent : look().error, !isReached});
  }

  void add(const FocusPoint& tail, const FocusPoint& head, const QColor& color) {
    arrows.push_back({QPointF(tail.x, tail.y), QPointF(head.x, head.y), color});
  }

  void add(const FocusMap& map) {
    for (const FocusStop& stop : map.stops) add(stop);
    for (const FocusArrow& arrow : map.arrows)
      if (arrow.state == ArrowState::followed) add(arrow.tail, arrow.head, look().accent);
    for (const DeadLink& link : map.deadLinks)
      if (!link.isHidden) add(link.tail, link.head, look().error);
  }
};

}  // namespace

void StudioWindow::showMarks() {
  Marks shown;
  if (inspected && showsFocusMap && inspector->sources()) shown.add(focusMap(*inspected, *inspector->sources()));
  const auto row = inspected ? inspector->chosen() : std::nullopt;
  const bool hasSource = row && inspector->sources() && inspector->sources()->of(row->id);
  if (row && !hasSource) shown.marks.push_back({rectOf(row->bounds), look().chosen, false});
  screen->setMarks(std::move(shown.marks), std::move(shown.arrows));
  screen->setHandles(hasSource ? std::optional(row->bounds) : std::nullopt);
}

void StudioWindow::setFocusMap(bool on) {
  showsFocusMap = on;
  showMarks();
  if (on && inspected && inspector->sources())
    state->setText(QString::fromStdString(summaryOf(focusMap(*inspected, *inspector->sources()))));
}
