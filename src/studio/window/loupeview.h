// What lies under the pointer: a few pixels around it, large, and the pixel in numbers.
#pragma once

#include <QPoint>
#include <QString>
#include <QWidget>
#include <optional>

class LoupeView : public QWidget {
 public:
  LoupeView();

  // `pixels` are 720 x 480, 0x00RRGGBB; `stored` is the pixel in the player's own terms.
  void point(const uint32_t* pixels, std::optional<QPoint> at, const QString& stored);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  static constexpr int kAcross = 13;  // pixels, an odd number

  std::optional<QPoint> at;
  uint32_t around[kAcross * kAcross] = {};  // 0x00RRGGBB; black beyond the screen
  QString stored;
};
