#include "studio/window/loupeview.h"

#include <QPainter>
#include <algorithm>

#include "studio/window/look.h"
#include "studio/window/screenview.h"

namespace {

constexpr int kMagnified = 11, kLines = 3;

}  // namespace

LoupeView::LoupeView() {
  setFixedSize(sizeHint());
  setAccessibleName("Loupe");
}

QSize LoupeView::sizeHint() const { return {202, kAcross * kMagnified + kLines * fontMetrics().height() + 3 * kGap}; }

void LoupeView::point(const uint32_t* pixels, std::optional<QPoint> where, const QString& s) {
  at = pixels ? where : std::nullopt;
  stored = s;
  std::fill(std::begin(around), std::end(around), 0u);
  if (at)
    for (int i = 0; i < kAcross * kAcross; ++i) {
      const QPoint p = *at + QPoint(i % kAcross - kAcross / 2, i / kAcross - kAcross / 2);
      if (QRect(0, 0, ScreenView::kWidth, ScreenView::kHeight).contains(p))
        around[i] = pixels[p.y() * ScreenView::kWidth + p.x()];
    }
  update();
}

void LoupeView::paintEvent(QPaintEvent*) {
  const Look& l = look();
  QPainter painter(this);
  const int size = kAcross * kMagnified;
  const QRect square((width() - size) / 2, 0, size, size);
  if (at) {
    const QImage image(reinterpret_cast<const uchar*>(around), kAcross, kAcross, QImage::Format_RGB32);
    painter.drawImage(square, image);
    const int middle = kAcross / 2 * kMagnified;
    painter.setPen(QPen(Qt::white, 1));
    painter.drawRect(square.x() + middle - 1, middle - 1, kMagnified + 1, kMagnified + 1);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(square.x() + middle - 2, middle - 2, kMagnified + 3, kMagnified + 3);
  } else {
    painter.setPen(l.faint);
    painter.drawText(square, Qt::AlignCenter | Qt::TextWordWrap, "Point at the screen");
  }
  painter.setPen(l.edge);
  painter.drawRect(square.adjusted(0, 0, -1, -1));
  if (!at) return;
  const QColor color = QColor::fromRgb(around[kAcross * kAcross / 2]);
  const QString lines[kLines] = {QString("x %1   y %2").arg(at->x()).arg(at->y()), stored, color.name().toUpper()};
  painter.setFont(fixedFont());
  painter.setPen(l.text);
  for (int i = 0; i < kLines; ++i)
    painter.drawText(
        QRect(square.x(), size + kGap + i * fontMetrics().height(), width() - square.x(), fontMetrics().height()),
        Qt::AlignLeft | Qt::AlignVCenter, lines[i]);
}
