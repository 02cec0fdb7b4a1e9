// vistrel: the desktop previewer.
#include <QApplication>

#include "host/qt/qtdesktop.h"

int main(int argc, char** argv) {
  // Pixels are shown one for one or by a whole factor, never smoothed.
  QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::Floor);
  QApplication application(argc, argv);
  QtDesktop desktop;
  return desktop.start() ? QApplication::exec() : -1;
}
