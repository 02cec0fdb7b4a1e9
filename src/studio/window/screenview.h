// The television's screen, magnified pixel by pixel, with what helps to look at it.
#pragma once

#include <QPolygonF>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

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

  QSize sizeHint() const override;

  std::function<void(const QString& name)> pressed;    // a key of the remote control
  std::function<void(std::optional<QPoint>)> pointed;  // a pixel of the screen, or none
  std::function<void(QPoint)> picked;                  // while picking

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  void set(bool ScreenView::*aid, bool on);
  QSizeF scale() const;
  std::optional<QPoint> pixelAt(QPointF where) const;
  void drawGrid(QPainter* painter, const QRect& exposed) const;
  void drawAreas(QPainter* painter) const;
  void drawMarks(QPainter* painter) const;
  void changeSize();

  const uint32_t* pixels = nullptr;
  int factor = 1;
  ScreenShape shape = ScreenShape::square;
  bool grid = true, safeAreas = false, overscan = false, picking = false;
  std::vector<ScreenMark> marks;
  std::vector<ScreenArrow> arrows;
};
