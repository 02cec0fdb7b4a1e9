#include "studio/window/memoryview.h"

#include <QPainter>
#include <algorithm>

#include "studio/window/look.h"

namespace {

constexpr int kMargin = 2 * kGap, kBar = 6, kChart = 72, kBlock = 18;
constexpr uint32_t kMostWidgets = 65536;  // of a page

// Goes down the page, thing by thing.
class MemoryPainter {
 public:
  MemoryPainter(QPainter* p, int w) : painter(p), width(w - 2 * kMargin), line(p->fontMetrics().height()) {}

  void bar(const QString& name, uint64_t used, uint64_t all, const QString& unit) {
    twoTexts(name, QString("%L1 of %L2 %3").arg(used).arg(all).arg(unit).trimmed());
    const double share = all == 0 ? 0 : std::min(1.0, double(used) / double(all));
    const QRectF place(kMargin, y + 1, width, kBar);
    fillRounded(place, look().edge);
    fillRounded(QRectF(place.topLeft(), QSizeF(place.width() * share, kBar)),
                share > 0.9 ? look().error : look().accent);
    y += kBar + kMargin;
  }

  // A name and what is to be said of it, at the other side.
  void twoTexts(const QString& name, const QString& about) {
    const QRect place(kMargin, y, width, line);
    painter->setPen(look().faint);
    painter->drawText(place, Qt::AlignRight, about);
    const int room = width - painter->fontMetrics().horizontalAdvance(about) - kGap;
    painter->setPen(look().text);
    painter->drawText(place, Qt::AlignLeft, painter->fontMetrics().elidedText(name, Qt::ElideMiddle, room));
    y += line + 2;
  }

  void heading(const QString& text) {
    painter->setPen(look().faint);
    painter->drawText(QRect(kMargin, y, width, line), Qt::AlignLeft, text);
    y += line + kGap / 2;
  }

  void warning(const QString& text) {
    painter->setPen(look().warning);
    const QRect place = painter->boundingRect(QRect(kMargin, y, width, 1000), Qt::TextWordWrap, text);
    painter->drawText(place, Qt::TextWordWrap, text);
    y += place.height() + kGap;
  }

  // Bob's heap: full up to the top; a line stands where it was collected.
  void heapChart(const std::vector<MemorySample>& samples, uint32_t spaceBytes) {
    const QRectF place(kMargin, y, width, kChart);
    painter->fillRect(place, look().panel);
    if (samples.size() > 1 && spaceBytes > 0) {
      const double begin = samples.front().time, length = std::max(1.0, samples.back().time - begin);
      const auto x = [&](const MemorySample& s) { return place.left() + (s.time - begin) / length * place.width(); };
      const auto top = [&](const MemorySample& s) {
        return place.bottom() - std::min(1.0, double(s.heapBytes) / spaceBytes) * place.height();
      };
      QPolygonF curve{place.bottomLeft()};
      for (const MemorySample& sample : samples) curve << QPointF(x(sample), top(sample));
      QColor fill = look().accent;
      fill.setAlpha(60);
      painter->setPen(Qt::NoPen);
      painter->setBrush(fill);
      painter->drawPolygon(QPolygonF(curve) << place.bottomRight());
      painter->setPen(QPen(look().warning, 1));
      for (size_t i = 1; i < samples.size(); ++i)
        if (samples[i].collections > samples[i - 1].collections)
          painter->drawLine(QPointF(x(samples[i]), place.top()), QPointF(x(samples[i]), place.bottom()));
      painter->setPen(QPen(look().accent, 1.5));
      painter->setBrush(Qt::NoBrush);
      curve.removeFirst();
      painter->drawPolyline(curve);
    }
    painter->setPen(look().edge);
    painter->drawRect(place);
    y += kChart + 2;
    painter->setPen(look().faint);
    const auto seconds = [&](size_t at) { return QString("%1 s").arg(samples[at].time / 1000.0, 0, 'f', 1); };
    if (!samples.empty()) {
      painter->drawText(QRect(kMargin, y, width, line), Qt::AlignLeft, seconds(0));
      painter->drawText(QRect(kMargin, y, width, line), Qt::AlignRight, seconds(samples.size() - 1));
    }
    y += line + kMargin;
  }

  // The block from its first byte to its last: the table, room, and the pictures.
  void imageBlock(const ImageCacheView& images) {
    const QRectF place(kMargin, y, width, kBlock);
    painter->fillRect(place, look().panel);
    const auto part = [&](uint64_t offset, uint64_t bytes, const QColor& color) {
      const double scale = images.blockBytes == 0 ? 0 : place.width() / double(images.blockBytes);
      painter->fillRect(QRectF(place.left() + double(offset) * scale, place.top(), double(bytes) * scale, kBlock),
                        color);
    };
    part(0, images.tableBytes, look().faint);
    for (const CachedImageView& image : images.entries) {
      part(image.offset, image.bytes, look().accent);
      part(image.offset, std::max(1u, images.blockBytes / 1000), look().panel);
    }
    painter->setPen(look().edge);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(place);
    y += kBlock + kGap;
  }

  void gap() { y += kGap; }

  int y = kMargin;

 private:
  void fillRounded(const QRectF& place, const QColor& color) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRoundedRect(place, kBar / 2.0, kBar / 2.0);
  }

  QPainter* const painter;
  const int width, line;
};

}  // namespace

MemoryView::MemoryView(const MemoryMeter& m) : meter(m) { setAccessibleName("Memory"); }

QSize MemoryView::sizeHint() const { return {300, needed}; }

void MemoryView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  MemoryPainter page(&painter, width());
  const HeapView& heap = meter.heap();
  const ImageCacheView& images = meter.images();
  const GlyphCacheView& glyphs = meter.glyphs();
  page.bar("Bob's heap", heap.usedBytes, heap.spaceBytes, "bytes");
  page.bar("Bob's stack", heap.stackUsed, heap.stackWords, "words");
  page.bar("Pictures", images.blockBytes - images.freeBytes, images.blockBytes, "bytes");
  page.bar("Glyph sets", uint64_t(glyphs.strikes), uint64_t(glyphs.mostStrikes), "");
  page.bar("Widgets", meter.latest().widgets, kMostWidgets, "");
  for (const MemoryWarning& warning : meter.warnings()) page.warning(QString::fromStdString(warning.text));

  page.heading(QString("Bob's heap over time, collected %L1 times").arg(heap.collections));
  page.heapChart(meter.history(), heap.spaceBytes);

  page.heading("The block of pictures, and what lies in it; the next to go first");
  page.imageBlock(images);
  for (const CachedImageView& image : images.entries)
    page.twoTexts(QString::fromStdString(image.name),
                  QString("%1 \u00d7 %2, %L3 bytes").arg(image.width).arg(image.height).arg(image.bytes));
  if (!meter.thrownOut().empty()) {
    page.gap();
    page.heading("Thrown out, the latest first");
    for (const ThrownOutImage& image : meter.thrownOut())
      page.twoTexts(QString::fromStdString(image.name),
                    QString("at %1 s, %L2 bytes").arg(image.time / 1000.0, 0, 'f', 1).arg(image.bytes));
  }
  if (needed == page.y + kMargin) return;
  needed = page.y + kMargin;
  setMinimumHeight(needed);
}
