// The television's screen, magnified pixel by pixel, with what helps to look at it.
#pragma once

#include <QPolygonF>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "studio/edit/grip.h"

enum class ScreenShape { square, standard, wide };  // square pixels, or a set of 4:3 or 16:9

// Something drawn over the screen, in its pixels.
struct ScreenMark {
  QRectF rect;
  QColor color;
  bool hatched = false;
};
struct ScreenArrow {
  QPointF from, to;
  QColor color;
};

class ScreenView : public QWidget {
 public:
  static constexpr int kWidth = 720, kHeight = 480, kMostZoom = 8;

  ScreenView();

  // 720 x 480 pixels, 0x00RRGGBB, which must stay until the next call.
  void show(const uint32_t* pixels);

  void setZoom(int factor);  // 1 to 8
  int zoom() const { return factor; }
  void setShape(ScreenShape shape);
  void setGrid(bool on) { set(&ScreenView::grid, on); }            // shows from four times on
  void setSafeAreas(bool on) { set(&ScreenView::safeAreas, on); }  // 90 % for what moves, 80 % for titles
  void setOverscan(bool on) { set(&ScreenView::overscan, on); }    // hides what a set would cut, 5 % at each edge
  void setPicking(bool on);
  void setMarks(std::vector<ScreenMark> marks, std::vector<ScreenArrow> arrows = {});
  // A rectangle with handles, which can be dragged; one that is being dragged stays where the hand has it.
  void setHandles(std::optional<Bounds> place);

  QSize sizeHint() const override;

  std::function<void(const QString& name)> pressed;    // a key of the remote control
  std::function<void(std::optional<QPoint>)> pointed;  // a pixel of the screen, or none
  std::function<void(QPoint)> picked;                  // while picking, or with Ctrl
  std::function<void(int steps)> zoomed;               // by the wheel with Ctrl
  // The hand has the rectangle there now; `isOver` when it has let go. Given up with Esc, it is where it was.
  std::function<void(const Bounds& place, bool isOver)> dragged;
  std::function<void(const Bounds& place)> nudged;  // by Alt and an arrow, with Shift in size

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void set(bool ScreenView::*aid, bool on);
  QSizeF scale() const;
  std::optional<QPoint> pixelAt(QPointF where) const;
  Grip gripUnder(QPointF where) const;
  bool nudge(const QKeyEvent& event);
  void endDrag(const Bounds& place);
  void drawGrid(QPainter* painter, const QRect& exposed) const;
  void drawAreas(QPainter* painter) const;
  void drawMarks(QPainter* painter) const;
  void drawHandles(QPainter* painter) const;
  QRectF shown(const QRectF& place) const;
  void changeSize();

  const uint32_t* pixels = nullptr;
  int factor = 1;
  ScreenShape shape = ScreenShape::square;
  bool grid = true, safeAreas = false, overscan = false, picking = false;
  std::vector<ScreenMark> marks;
  std::vector<ScreenArrow> arrows;

  struct Drag {
    Grip grip;
    QPointF from;  // of the desktop
    Bounds start, now;
  };
  std::optional<Bounds> handles;
  std::optional<Drag> drag;
};
