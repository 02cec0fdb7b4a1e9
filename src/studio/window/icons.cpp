#include "studio/window/icons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <array>

#include "studio/window/look.h"

namespace {

void arrowHead(QPainterPath* path, QPointF tip, QPointF a, QPointF b) {
  path->moveTo(tip + a);
  path->lineTo(tip);
  path->lineTo(tip + b);
}

// A circle that isn't closed, with an arrow at its end.
void loop(QPainter* painter) {
  QPainterPath path;
  path.arcMoveTo(QRectF(4, 4, 12, 12), 40);
  path.arcTo(QRectF(4, 4, 12, 12), 40, 290);
  arrowHead(&path, QPointF(14.6, 6.1), QPointF(-4, 0.4), QPointF(0.4, -4));
  painter->drawPath(path);
}

// An arrow that turns back to the left, or to the right.
void turn(QPainter* painter, bool isMirrored) {
  painter->save();
  if (isMirrored) {
    painter->translate(20, 0);
    painter->scale(-1, 1);
  }
  QPainterPath path(QPointF(4, 7.5));
  path.lineTo(11.5, 7.5);
  path.arcTo(QRectF(7.5, 7.5, 8, 8), 90, -180);
  path.lineTo(7, 15.5);
  arrowHead(&path, QPointF(4, 7.5), QPointF(3.4, -3.4), QPointF(3.4, 3.4));
  painter->drawPath(path);
  painter->restore();
}

void dot(QPainter* painter, QPointF at, double radius = 1.9) {
  painter->setBrush(painter->pen().brush());
  painter->drawEllipse(at, radius, radius);
}

void glass(QPainter* painter) {
  painter->drawEllipse(QRectF(3.5, 3.5, 9.5, 9.5));
  painter->drawLine(QPointF(11.8, 11.8), QPointF(16.5, 16.5));
}

// In a square of 20 x 20, with the pen and without a brush.
void draw(QPainter* painter, Sign sign) {
  const QBrush solid = painter->pen().brush();
  switch (sign) {
    case Sign::reload: loop(painter); break;
    case Sign::restart:
      painter->drawLine(QPointF(4.5, 4), QPointF(4.5, 16));
      painter->setBrush(solid);
      painter->drawPolygon(QPolygonF({{15.5, 4.5}, {15.5, 15.5}, {7, 10}}));
      break;
    case Sign::pause:
      painter->drawLine(QPointF(7, 5), QPointF(7, 15));
      painter->drawLine(QPointF(13, 5), QPointF(13, 15));
      break;
    case Sign::play:
      painter->setBrush(solid);
      painter->drawPolygon(QPolygonF({{6, 4.5}, {15.5, 10}, {6, 15.5}}));
      break;
    case Sign::step:
      painter->setBrush(solid);
      painter->drawPolygon(QPolygonF({{4.5, 5}, {12, 10}, {4.5, 15}}));
      painter->drawLine(QPointF(15, 5), QPointF(15, 15));
      break;
    case Sign::stop:
      painter->setBrush(solid);
      painter->drawRect(QRectF(5.5, 5.5, 9, 9));
      break;
    case Sign::record:
      painter->setBrush(solid);
      painter->drawEllipse(QRectF(5, 5, 10, 10));
      break;
    case Sign::picture:
      painter->drawRoundedRect(QRectF(3, 5.5, 14, 10.5), 1.5, 1.5);
      painter->drawEllipse(QRectF(7.5, 8.2, 5, 5));
      painter->drawLine(QPointF(8, 4), QPointF(12, 4));
      break;
    case Sign::save: {
      QPainterPath path(QPointF(10, 3.5));
      path.lineTo(10, 12.5);
      arrowHead(&path, QPointF(10, 12.5), QPointF(-3.6, -3.6), QPointF(3.6, -3.6));
      path.moveTo(4, 12.5);
      path.lineTo(4, 16.5);
      path.lineTo(16, 16.5);
      path.lineTo(16, 12.5);
      painter->drawPath(path);
      break;
    }
    case Sign::undo:
    case Sign::redo: turn(painter, sign == Sign::redo); break;
    case Sign::pick: {
      QPainterPath path(QPointF(5, 3.5));
      for (const QPointF p : {QPointF(5, 15), QPointF(8.2, 12), QPointF(10.4, 16.8), QPointF(12.4, 15.9),
                              QPointF(10.3, 11.3), QPointF(14.6, 11.2)})
        path.lineTo(p);
      path.closeSubpath();
      painter->drawPath(path);
      break;
    }
    case Sign::focus: {
      painter->drawRect(QRectF(3, 4, 5.5, 4.5));
      painter->drawRect(QRectF(11.5, 12, 5.5, 4.5));
      QPainterPath path(QPointF(5.7, 8.5));
      path.lineTo(5.7, 14.2);
      path.lineTo(11, 14.2);
      arrowHead(&path, QPointF(11, 14.2), QPointF(-2.6, -2.2), QPointF(-2.6, 2.2));
      painter->drawPath(path);
      break;
    }
    case Sign::grid:
      painter->drawRect(QRectF(3.5, 3.5, 13, 13));
      for (const double at : {7.8, 12.2}) {
        painter->drawLine(QPointF(at, 3.5), QPointF(at, 16.5));
        painter->drawLine(QPointF(3.5, at), QPointF(16.5, at));
      }
      break;
    case Sign::safe:
      painter->drawRect(QRectF(2.5, 4, 15, 12));
      painter->drawRect(QRectF(5.5, 6.7, 9, 6.6));
      break;
    case Sign::zoomIn:
    case Sign::zoomOut:
      glass(painter);
      painter->drawLine(QPointF(6, 8.2), QPointF(10.5, 8.2));
      if (sign == Sign::zoomIn) painter->drawLine(QPointF(8.25, 6), QPointF(8.25, 10.5));
      break;
    case Sign::fit: {
      QPainterPath path;
      for (const auto& [x, y, dx, dy] :
           {std::array<double, 4>{3.5, 3.5, 1, 1}, {16.5, 3.5, -1, 1}, {3.5, 16.5, 1, -1}, {16.5, 16.5, -1, -1}})
        arrowHead(&path, QPointF(x, y), QPointF(4.2 * dx, 0), QPointF(0, 4.2 * dy));
      painter->drawPath(path);
      painter->drawRect(QRectF(7.5, 7.5, 5, 5));
      break;
    }
    case Sign::stepOver: {
      QPainterPath path;
      path.arcMoveTo(QRectF(4, 4.5, 12, 12), 170);
      path.arcTo(QRectF(4, 4.5, 12, 12), 170, -150);
      arrowHead(&path, QPointF(15.8, 8.6), QPointF(-4.2, 0.2), QPointF(0.2, -4.2));
      painter->drawPath(path);
      dot(painter, QPointF(10, 14.5));
      break;
    }
    case Sign::stepInto:
    case Sign::stepOut: {
      const double end = sign == Sign::stepInto ? 10.5 : 3.5, tail = sign == Sign::stepInto ? 3.5 : 10.5;
      const double back = sign == Sign::stepInto ? -3.6 : 3.6;
      QPainterPath path(QPointF(10, tail));
      path.lineTo(10, end);
      arrowHead(&path, QPointF(10, end), QPointF(-3.6, back), QPointF(3.6, back));
      painter->drawPath(path);
      dot(painter, QPointF(10, 15.3));
      break;
    }
    case Sign::error:
      painter->drawEllipse(QRectF(3.5, 3.5, 13, 13));
      painter->drawLine(QPointF(10, 6.5), QPointF(10, 11));
      dot(painter, QPointF(10, 13.6), 0.9);
      break;
  }
}

class SignEngine : public QIconEngine {
 public:
  explicit SignEngine(Sign s) : sign(s) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const Look& l = look();
    const QColor color = mode == QIcon::Disabled ? l.edge : state == QIcon::On ? l.accent : l.text;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / 20.0, rect.height() / 20.0);
    painter->setPen(QPen(sign == Sign::record && mode != QIcon::Disabled ? l.error : color, 1.6, Qt::SolidLine,
                         Qt::RoundCap, Qt::RoundJoin));
    draw(painter, sign);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  QIconEngine* clone() const override { return new SignEngine(sign); }

 private:
  const Sign sign;
};

}  // namespace

QIcon signIcon(Sign sign) { return QIcon(new SignEngine(sign)); }
