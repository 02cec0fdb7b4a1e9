#include "studio/window/remoteview.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QToolTip>
#include <array>

#include "studio/window/look.h"

namespace {

constexpr int kFlash = 220;  // milliseconds

struct Button {
  const char *name, *label, *key, *tip;
  int column, row;  // in thirds of the width
};

constexpr std::array kButtons{
    Button{"UpLeft", "\u2196", "U", "Up and left", 0, 0},
    Button{"Up", "\u2191", "I  \u2191", "Up", 1, 0},
    Button{"UpRight", "\u2197", "O", "Up and right", 2, 0},
    Button{"Left", "\u2190", "J  \u2190", "Left", 0, 1},
    Button{"Select", "OK", "K", "Select", 1, 1},
    Button{"Right", "\u2192", "L  \u2192", "Right", 2, 1},
    Button{"DownLeft", "\u2199", "M", "Down and left", 0, 2},
    Button{"Down", "\u2193", ",  \u2193", "Down", 1, 2},
    Button{"DownRight", "\u2198", ".", "Down and right", 2, 2},
    Button{"Clear", "Clear", "Del", "Clear", 0, 3},
    Button{"S", "S", "S", "S", 1, 3},
    Button{"Backspace", "Back", "\u232b", "Backspace", 2, 3},
    Button{"1", "1", "", "1", 0, 4},
    Button{"2", "2", "", "2", 1, 4},
    Button{"3", "3", "", "3", 2, 4},
    Button{"4", "4", "", "4", 0, 5},
    Button{"5", "5", "", "5", 1, 5},
    Button{"6", "6", "", "6", 2, 5},
    Button{"7", "7", "", "7", 0, 6},
    Button{"8", "8", "", "8", 1, 6},
    Button{"9", "9", "", "9", 2, 6},
    Button{"0", "0", "", "0", 1, 7},
};

constexpr int kWide = 54, kHigh = 42, kBetween = 6, kMargin = 14, kGroup = 12;

// A gap lies below the arrows and below Clear.
QRectF placeOf(const Button& b) {
  const int groups = (b.row >= 3) + (b.row >= 4);
  return QRectF(kMargin + b.column * (kWide + kBetween), kMargin + b.row * (kHigh + kBetween) + groups * kGroup, kWide,
                kHigh);
}

}  // namespace

RemoteView::RemoteView() {
  setMouseTracking(true);
  setFixedSize(sizeHint());
  setAccessibleName("Remote control");
}

QSize RemoteView::sizeHint() const {
  return {2 * kMargin + 3 * kWide + 2 * kBetween, 2 * kMargin + 8 * kHigh + 7 * kBetween + 2 * kGroup};
}

void RemoteView::flash(const QString& name, bool didSomething) {
  lit = name;
  litDid = didSomething;
  update();
  QTimer::singleShot(kFlash, this, [this] {
    lit.clear();
    update();
  });
}

void RemoteView::paintEvent(QPaintEvent*) {
  const Look& l = look();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(l.edge, 1));
  painter.setBrush(l.panel);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 16, 16);

  QFont large = font(), small = font();
  large.setPointSizeF(font().pointSizeF() * 1.15);
  small.setPointSizeF(font().pointSizeF() * 0.72);
  for (int i = 0; i < int(kButtons.size()); ++i) {
    const Button& b = kButtons[size_t(i)];
    const QRectF place = placeOf(b);
    const bool isLit = lit == b.name;
    const bool isSelect = std::string_view(b.name) == "Select";
    painter.setPen(QPen(isLit ? (litDid ? l.accent : l.warning) : l.edge, isLit ? 2 : 1));
    painter.setBrush(isLit && litDid ? l.accent : i == under ? l.edge : l.window);
    painter.drawRoundedRect(place, isSelect ? 20 : 9, isSelect ? 20 : 9);
    painter.setPen(isLit && litDid ? l.onAccent : l.text);
    painter.setFont(large);
    const QString label = QString::fromUtf8(b.label), key = QString::fromUtf8(b.key);
    painter.drawText(place.adjusted(0, 0, 0, key.isEmpty() ? 0 : -12), Qt::AlignCenter, label);
    if (key.isEmpty()) continue;
    painter.setPen(isLit && litDid ? l.onAccent : l.faint);
    painter.setFont(small);
    painter.drawText(place.adjusted(0, 0, 0, -4), Qt::AlignHCenter | Qt::AlignBottom, key);
  }
}

int RemoteView::buttonAt(QPointF where) const {
  for (int i = 0; i < int(kButtons.size()); ++i)
    if (placeOf(kButtons[size_t(i)]).contains(where)) return i;
  return -1;
}

void RemoteView::mousePressEvent(QMouseEvent* event) {
  const int i = buttonAt(event->position());
  if (i >= 0 && event->button() == Qt::LeftButton && pressed) pressed(kButtons[size_t(i)].name);
}

void RemoteView::mouseMoveEvent(QMouseEvent* event) {
  const int now = buttonAt(event->position());
  if (now == under) return;
  under = now;
  update();
}

void RemoteView::leaveEvent(QEvent*) {
  under = -1;
  update();
}

bool RemoteView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  auto* help = static_cast<QHelpEvent*>(event);
  const int i = buttonAt(help->pos());
  if (i < 0) {
    QToolTip::hideText();
  } else {
    const Button& b = kButtons[size_t(i)];
    const QString key = QString::fromUtf8(*b.key ? b.key : b.label).simplified().replace(" ", " or ");
    QToolTip::showText(help->globalPos(), QString("%1 (%2)").arg(b.tip, key), this);
  }
  return true;
}
