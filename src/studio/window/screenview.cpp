#include "studio/window/screenview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "studio/window/keys.h"
#include "studio/window/look.h"

namespace {

constexpr int kLeastZoomOfGrid = 4;
constexpr double kActionSafe = 0.9, kTitleSafe = 0.8, kCut = 0.05;

QRectF middle(const QRectF& all, double share) {
  const QSizeF size(all.width() * share, all.height() * share);
  return {QPointF(all.center().x() - size.width() / 2, all.center().y() - size.height() / 2), size};
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
  drawAreas(&painter);
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
  const QSizeF s = scale();
  const auto shown = [&](const QRectF& r) {
    return QRectF(r.x() * s.width(), r.y() * s.height(), r.width() * s.width(), r.height() * s.height());
  };
  for (const ScreenMark& mark : marks) {
    const QRectF r = shown(mark.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (mark.hatched) painter->fillRect(r, QBrush(mark.color, Qt::BDiagPattern));
    painter->setPen(QPen(QColor(255, 255, 255, 160), 3));
    painter->drawRect(r);
    painter->setPen(QPen(mark.color, 1.5));
    painter->drawRect(r);
  }
  if (arrows.empty()) return;
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

// Tab and the like belong to the page's window, as every key does that the remote control has.
bool ScreenView::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && keyName(*static_cast<QKeyEvent*>(event))) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void ScreenView::keyPressEvent(QKeyEvent* event) {
  const auto name = keyName(*event);
  if (!name) return QWidget::keyPressEvent(event);
  if (pressed) pressed(*name);
}

std::optional<QPoint> ScreenView::pixelAt(QPointF where) const {
  const QPoint pixel(int(std::floor(where.x() / scale().width())), int(std::floor(where.y() / scale().height())));
  const bool isInside = QRect(0, 0, kWidth, kHeight).contains(pixel);
  return isInside ? std::optional(pixel) : std::nullopt;
}

void ScreenView::mouseMoveEvent(QMouseEvent* event) {
  if (pointed) pointed(pixelAt(event->position()));
}

void ScreenView::mousePressEvent(QMouseEvent* event) {
  setFocus();
  const auto pixel = pixelAt(event->position());
  if (picking && pixel && picked) picked(*pixel);
}

void ScreenView::leaveEvent(QEvent*) {
  if (pointed) pointed(std::nullopt);
}
