// The television: the shell's desktop pixels, one for one, and the keys of the remote control.
#pragma once

#include <QWidget>

#include "host/shell.h"

class ScreenWidget : public QWidget {
 public:
  // `dispatch` receives each message and lets the engine step after it.
  using Dispatch = std::function<void(const std::function<void()>& message)>;
  ScreenWidget(Shell& shell, Dispatch dispatch);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Shell& shell;
  Dispatch dispatch;
};
