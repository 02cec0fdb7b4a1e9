#include "host/qt/screenwidget.h"

#include <QImage>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>

#include "host/keytable.h"
#include "host/qt/windows1252.h"

namespace {

// 0 for a key that only comes as a character.
int virtualKey(int key) {
  switch (key) {
    case Qt::Key_Left: return kVirtualLeft;
    case Qt::Key_Up: return kVirtualUp;
    case Qt::Key_Right: return kVirtualRight;
    case Qt::Key_Down: return kVirtualDown;
    case Qt::Key_Delete: return kVirtualDelete;
    default: return 0;
  }
}

}  // namespace

ScreenWidget::ScreenWidget(Shell& s, Dispatch d) : shell(s), dispatch(std::move(d)) {
  setFixedSize(s.screen.screenWidth, s.screen.screenHeight);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void ScreenWidget::paintEvent(QPaintEvent* event) {
  const ScreenSurface& screen = shell.screen;
  const QImage image(reinterpret_cast<const uchar*>(screen.dibBits.data()), screen.screenWidth, screen.screenHeight,
                     screen.screenWidth * 4, QImage::Format_RGB32);
  QPainter painter(this);
  for (const QRect& rect : event->region()) painter.drawImage(rect.topLeft(), image, rect);
}

void ScreenWidget::keyPressEvent(QKeyEvent* event) {
  if (const int key = virtualKey(event->key())) dispatch([&] { shell.keyDown(key); });
  for (char c : bytesFromText(event->text())) dispatch([&] { shell.character(c); });
  QWidget::keyPressEvent(event);
}
