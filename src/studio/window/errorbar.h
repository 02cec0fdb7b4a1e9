// A strip above the screen that says what is wrong, and opens the place when it is clicked.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "kit/errors.h"

class QLabel;
class QToolButton;

class ErrorBar : public QWidget {
 public:
  ErrorBar();

  // Shows the first and how many more there are; hides when there are none, or when these were closed.
  void setMessages(const std::vector<KitMessage>& messages);

  std::function<void(const KitMessage&)> clicked;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void show(size_t index);
  void close();

  std::vector<KitMessage> messages;
  std::string closed;  // what they said when somebody closed the strip
  size_t shown = 0;
  QLabel* text;
  QToolButton *next, *closing;
};
