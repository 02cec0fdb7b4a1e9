#include "studio/window/memoryview.h"

#include <QPainter>
#include <algorithm>

#include "studio/window/look.h"

namespace {

// A name, how much of how much, and a bar; returns where the next one begins.
int drawBar(QPainter* painter, int y, int width, const QString& name, uint64_t used, uint64_t all,
            const QString& unit) {
  const Look& l = look();
  const int line = painter->fontMetrics().height();
  painter->setPen(l.text);
  painter->drawText(QRect(2 * kGap, y, width, line), Qt::AlignLeft, name);
  painter->setPen(l.faint);
  painter->drawText(QRect(2 * kGap, y, width, line), Qt::AlignRight,
                    QString("%L1 of %L2 %3").arg(used).arg(all).arg(unit));
  const double share = all == 0 ? 0 : std::min(1.0, double(used) / double(all));
  const QRectF bar(2 * kGap, y + line + 3, width, 6);
  painter->setPen(Qt::NoPen);
  painter->setBrush(l.edge);
  painter->drawRoundedRect(bar, 3, 3);
  painter->setBrush(share > 0.9 ? l.error : l.accent);
  painter->drawRoundedRect(QRectF(bar.topLeft(), QSizeF(bar.width() * share, bar.height())), 3, 3);
  return y + line + 3 + 6 + 2 * kGap;
}

}  // namespace

MemoryView::MemoryView(const MemoryMeter& m) : meter(m) { setAccessibleName("Memory"); }

void MemoryView::paintEvent(QPaintEvent*) {
  const Look& l = look();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const int width = this->width() - 4 * kGap, line = painter.fontMetrics().height();
  const HeapView& heap = meter.heap();
  const ImageCacheView& images = meter.images();
  const GlyphCacheView& glyphs = meter.glyphs();
  int y = 2 * kGap;
  y = drawBar(&painter, y, width, QString("Bob's heap, %1 collections").arg(heap.collections), heap.usedBytes,
              heap.spaceBytes, "bytes");
  y = drawBar(&painter, y, width, "Bob's stack", heap.stackUsed, heap.stackWords, "words");
  y = drawBar(&painter, y, width, "Pictures", images.blockBytes - images.freeBytes, images.blockBytes, "bytes");
  y = drawBar(&painter, y, width, "Glyph sets", uint64_t(glyphs.strikes), uint64_t(glyphs.mostStrikes), "");
  y = drawBar(&painter, y, width, "Widgets", meter.latest().widgets, 65536, "");
  for (const MemoryWarning& warning : meter.warnings()) {
    painter.setPen(l.warning);
    const QString text = QString::fromStdString(warning.text);
    const QRect place = painter.boundingRect(QRect(2 * kGap, y, width, 1000), Qt::TextWordWrap, text);
    painter.drawText(place, Qt::TextWordWrap, text);
    y += place.height() + kGap;
  }
  y += kGap;
  painter.setPen(l.faint);
  painter.drawText(QRect(2 * kGap, y, width, line), Qt::AlignLeft, "In the image cache, the next to go first");
  y += line + kGap / 2;
  for (const CachedImageView& image : images.entries) {
    painter.setPen(l.text);
    painter.drawText(QRect(2 * kGap, y, width, line), Qt::AlignLeft, QString::fromStdString(image.name));
    painter.setPen(l.faint);
    painter.drawText(QRect(2 * kGap, y, width, line), Qt::AlignRight,
                     QString("%1 \u00d7 %2, %L3 bytes").arg(image.width).arg(image.height).arg(image.bytes));
    y += line + 2;
  }
}
