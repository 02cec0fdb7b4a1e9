// The television: the shell's desktop pixels, one for one, and the keys of the remote control.
#pragma once

#include <QWidget>

#include "host/shell.h"

class ScreenWidget : public QWidget {
 public:
  ScreenWidget(Shell& shell, std::function<void()> afterMessage);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Shell& shell;
  std::function<void()> afterMessage;  // a step of the engine behind each message
};
