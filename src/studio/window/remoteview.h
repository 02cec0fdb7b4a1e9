// The remote control, to click: each button says which key of the keyboard does the same.
#pragma once

#include <QWidget>
#include <functional>

class RemoteView : public QWidget {
 public:
  RemoteView();

  QSize sizeHint() const override;

  // Shows for a moment that the key was pressed, and whether the page did anything.
  void flash(const QString& name, bool didSomething);

  std::function<void(const QString& name)> pressed;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  int buttonAt(QPointF where) const;  // -1 for none

  int under = -1;  // the pointer
  QString lit;     // name of the key that was pressed last
  bool litDid = false;
};
