#include "studio/window/screenview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "studio/window/keys.h"
#include "studio/window/look.h"

namespace {

constexpr int kLeastZoomOfGrid = 4;
constexpr double kHandle = 7, kReach = 6;  // of the desktop's pixels
constexpr double kActionSafe = 0.9, kTitleSafe = 0.8, kCut = 0.05;

QRectF middle(const QRectF& all, double share) {
  const QSizeF size(all.width() * share, all.height() * share);
  return {QPointF(all.center().x() - size.width() / 2, all.center().y() - size.height() / 2), size};
}

Qt::CursorShape cursorOf(Grip grip) {
  switch (grip) {
    case Grip::none: return Qt::ArrowCursor;
    case Grip::all: return Qt::SizeAllCursor;
    case Grip::left:
    case Grip::right: return Qt::SizeHorCursor;
    case Grip::top:
    case Grip::bottom: return Qt::SizeVerCursor;
    case Grip::topLeft:
    case Grip::bottomRight: return Qt::SizeFDiagCursor;
    case Grip::topRight:
    case Grip::bottomLeft: return Qt::SizeBDiagCursor;
  }
  return Qt::ArrowCursor;
}

std::optional<QPoint> arrowOf(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Left: return QPoint(-1, 0);
    case Qt::Key_Right: return QPoint(1, 0);
    case Qt::Key_Up: return QPoint(0, -1);
    case Qt::Key_Down: return QPoint(0, 1);
    default: return std::nullopt;
  }
}

}  // namespace

ScreenView::ScreenView() {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName("Screen");
  changeSize();
}

void ScreenView::show(const uint32_t* p) {
  pixels = p;
  update();
}

void ScreenView::setZoom(int f) {
  factor = std::clamp(f, 1, kMostZoom);
  changeSize();
}

void ScreenView::setShape(ScreenShape s) {
  shape = s;
  changeSize();
}

void ScreenView::set(bool ScreenView::*aid, bool on) {
  this->*aid = on;
  update();
}

void ScreenView::setPicking(bool on) {
  picking = on;
  setCursor(on ? Qt::CrossCursor : Qt::ArrowCursor);
}

void ScreenView::setMarks(std::vector<ScreenMark> m, std::vector<ScreenArrow> a) {
  marks = std::move(m);
  arrows = std::move(a);
  update();
}

void ScreenView::setHandles(std::optional<Bounds> place) {
  if (handles == place) return;
  handles = place;
  update();
}

// Of a pixel, in those of the desktop; rows keep their height whatever the shape.
QSizeF ScreenView::scale() const {
  const double ratio = shape == ScreenShape::standard ? 4.0 / 3 : shape == ScreenShape::wide ? 16.0 / 9 : 1.5;
  return {factor * ratio * kHeight / kWidth, double(factor)};
}

QSize ScreenView::sizeHint() const { return {int(std::lround(kWidth * scale().width())), kHeight * factor}; }

void ScreenView::changeSize() {
  setFixedSize(sizeHint());
  updateGeometry();
  update();
}

void ScreenView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  if (!pixels) return painter.fillRect(rect(), Qt::black);
  const QImage image(reinterpret_cast<const uchar*>(pixels), kWidth, kHeight, kWidth * 4, QImage::Format_RGB32);
  painter.drawImage(rect(), image);
  if (grid && factor >= kLeastZoomOfGrid) drawGrid(&painter, event->rect());
  drawMarks(&painter);
  drawHandles(&painter);
  drawAreas(&painter);
}

QRectF ScreenView::shown(const QRectF& r) const {
  const QSizeF s = scale();
  return {r.x() * s.width(), r.y() * s.height(), r.width() * s.width(), r.height() * s.height()};
}

void ScreenView::drawGrid(QPainter* painter, const QRect& exposed) const {
  painter->setPen(QPen(QColor(128, 128, 128, 110), 0));
  const QSizeF s = scale();
  for (int x = int(exposed.left() / s.width()); x * s.width() <= exposed.right(); ++x)
    painter->drawLine(QPointF(x * s.width(), exposed.top()), QPointF(x * s.width(), exposed.bottom() + 1));
  for (int y = int(exposed.top() / s.height()); y * s.height() <= exposed.bottom(); ++y)
    painter->drawLine(QPointF(exposed.left(), y * s.height()), QPointF(exposed.right() + 1, y * s.height()));
}

void ScreenView::drawAreas(QPainter* painter) const {
  const QRectF all(rect());
  if (overscan) {
    QPainterPath cut;
    cut.addRect(all);
    cut.addRect(middle(all, 1 - 2 * kCut));
    painter->fillPath(cut, QColor(12, 13, 16));
  }
  if (!safeAreas) return;
  for (const double share : {kActionSafe, kTitleSafe}) {
    const QRectF area = middle(all, share);
    painter->setPen(QPen(QColor(0, 0, 0, 150), 3));
    painter->drawRect(area);
    painter->setPen(QPen(share == kActionSafe ? look().accent : QColor("#F2C94C"), 1, Qt::DashLine));
    painter->drawRect(area);
  }
}

void ScreenView::drawMarks(QPainter* painter) const {
  for (const ScreenMark& mark : marks) {
    const QRectF r = shown(mark.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (mark.hatched) painter->fillRect(r, QBrush(mark.color, Qt::BDiagPattern));
    painter->setPen(QPen(QColor(255, 255, 255, 160), 3));
    painter->drawRect(r);
    painter->setPen(QPen(mark.color, 1.5));
    painter->drawRect(r);
  }
  if (arrows.empty()) return;
  const QSizeF s = scale();
  painter->setRenderHint(QPainter::Antialiasing);
  for (const ScreenArrow& arrow : arrows) {
    const QPointF from(arrow.from.x() * s.width(), arrow.from.y() * s.height());
    const QPointF to(arrow.to.x() * s.width(), arrow.to.y() * s.height());
    const double angle = std::atan2(to.y() - from.y(), to.x() - from.x());
    constexpr double kHead = 9, kSpread = 0.42;
    const auto side = [&](double turn) {
      return to - QPointF(kHead * std::cos(angle + turn), kHead * std::sin(angle + turn));
    };
    for (const auto& [color, width] : {std::pair(QColor(255, 255, 255, 170), 4.0), std::pair(arrow.color, 2.0)}) {
      painter->setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
      painter->drawLine(from, to);
      painter->drawPolyline(QPolygonF({side(kSpread), to, side(-kSpread)}));
    }
  }
}

void ScreenView::drawHandles(QPainter* painter) const {
  if (!handles) return;
  const Bounds place = drag ? drag->now : *handles;
  const QColor color = look().chosen;
  const QRectF r = shown(QRectF(place.x, place.y, place.w, place.h)).adjusted(0.5, 0.5, -0.5, -0.5);
  painter->setRenderHint(QPainter::Antialiasing, false);
  painter->setBrush(Qt::NoBrush);
  painter->setPen(QPen(QColor(255, 255, 255, 160), 3));
  painter->drawRect(r);
  painter->setPen(QPen(color, 1.5));
  painter->drawRect(r);
  painter->setPen(QPen(color, 1));
  painter->setBrush(Qt::white);
  const QSizeF s = scale();
  for (const GripPoint& point : gripPoints(place))
    painter->drawRect(QRectF(point.x * s.width() - kHandle / 2, point.y * s.height() - kHandle / 2, kHandle, kHandle));
  painter->setBrush(Qt::NoBrush);
  if (!drag) return;
  const QString text = QString("%1, %2   %3 \u00d7 %4").arg(place.x).arg(place.y).arg(place.w).arg(place.h);
  const QRectF size = painter->fontMetrics().boundingRect(text).adjusted(-5, -2, 5, 2);
  QRectF label(QPointF(r.left(), r.bottom() + kHandle), size.size());
  if (label.bottom() > height()) label.moveBottom(r.top() - kHandle);
  if (label.top() < 0) label.moveTop(r.top() + kHandle);
  label.moveLeft(std::clamp(label.left(), 0.0, std::max(0.0, width() - label.width())));
  painter->fillRect(label, QColor(20, 22, 28, 220));
  painter->setPen(Qt::white);
  painter->drawText(label, Qt::AlignCenter, text);
}

// Tab and the like belong to the page's window, as every key does that the remote control has.
bool ScreenView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (keyName(key) || (drag && key.key() == Qt::Key_Escape) || (key.modifiers() & Qt::AltModifier && arrowOf(key))) {
      event->accept();
      return true;
    }
  }
  return QWidget::event(event);
}

void ScreenView::keyPressEvent(QKeyEvent* event) {
  if (drag && event->key() == Qt::Key_Escape) return endDrag(drag->start);
  if (event->modifiers() & Qt::AltModifier && nudge(*event)) return;
  const auto name = keyName(*event);
  if (!name) return QWidget::keyPressEvent(event);
  if (pressed) pressed(*name);
}

std::optional<QPoint> ScreenView::pixelAt(QPointF where) const {
  const QPoint pixel(int(std::floor(where.x() / scale().width())), int(std::floor(where.y() / scale().height())));
  const bool isInside = QRect(0, 0, kWidth, kHeight).contains(pixel);
  return isInside ? std::optional(pixel) : std::nullopt;
}

Grip ScreenView::gripUnder(QPointF where) const {
  if (!handles || picking) return Grip::none;
  const QSizeF s = scale();
  return gripAt(*handles, where.x() / s.width(), where.y() / s.height(), kReach / s.width(), kReach / s.height());
}

bool ScreenView::nudge(const QKeyEvent& event) {
  const auto by = arrowOf(event);
  if (!by || !handles || !nudged || drag) return false;
  const bool isSize = event.modifiers() & Qt::ShiftModifier;
  nudged(::dragged(*handles, isSize ? Grip::bottomRight : Grip::all, by->x(), by->y()));
  return true;
}

void ScreenView::endDrag(const Bounds& place) {
  drag.reset();
  update();
  if (dragged) dragged(place, true);
}

void ScreenView::mouseMoveEvent(QMouseEvent* event) {
  if (pointed) pointed(pixelAt(event->position()));
  if (!drag) return setCursor(picking ? Qt::CrossCursor : cursorOf(gripUnder(event->position())));
  const QPointF by = event->position() - drag->from;
  const Bounds now = ::dragged(drag->start, drag->grip, int(std::lround(by.x() / scale().width())),
                               int(std::lround(by.y() / scale().height())), event->modifiers() & Qt::ShiftModifier);
  if (now == drag->now) return;
  drag->now = now;
  update();
  if (dragged) dragged(now, false);
}

void ScreenView::mousePressEvent(QMouseEvent* event) {
  setFocus();
  if (event->button() != Qt::LeftButton) return;
  const auto pixel = pixelAt(event->position());
  if ((picking || event->modifiers() & Qt::ControlModifier) && pixel && picked) return picked(*pixel);
  const Grip grip = gripUnder(event->position());
  if (grip != Grip::none) drag = Drag{grip, event->position(), *handles, *handles};
}

void ScreenView::mouseReleaseEvent(QMouseEvent* event) {
  if (drag && event->button() == Qt::LeftButton) endDrag(drag->now);
}

void ScreenView::leaveEvent(QEvent*) {
  if (pointed) pointed(std::nullopt);
}

void ScreenView::wheelEvent(QWheelEvent* event) {
  if (!(event->modifiers() & Qt::ControlModifier) || !zoomed) return QWidget::wheelEvent(event);
  if (event->angleDelta().y() != 0) zoomed(event->angleDelta().y() > 0 ? 1 : -1);
}
