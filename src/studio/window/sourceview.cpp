#include "studio/window/sourceview.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTextBlock>

#include "studio/window/look.h"

namespace {

constexpr int kDot = 10, kDotRoom = kDot + 8;

}  // namespace

class SourceView::Margin : public QWidget {
 public:
  explicit Margin(SourceView* v) : QWidget(v), view(v) {
    setToolTip("Click: stop there, or no more. The other button: when, or what to log instead");
    setCursor(Qt::PointingHandCursor);
  }

 protected:
  void paintEvent(QPaintEvent* event) override { view->paintMargin(event); }
  void mousePressEvent(QMouseEvent* event) override {
    const int line = view->lineAt(int(event->position().y()));
    if (line == 0) return;
    if (event->button() == Qt::LeftButton && view->lineClicked) view->lineClicked(line);
    if (event->button() == Qt::RightButton && view->menuWanted)
      view->menuWanted(line, event->globalPosition().toPoint());
  }

 private:
  SourceView* const view;
};

SourceView::SourceView() : margin(new Margin(this)) {
  setReadOnly(true);
  setFont(fixedFont());
  setFrameStyle(0);
  setLineWrapMode(QPlainTextEdit::NoWrap);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setAccessibleName("Source");
  QObject::connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
    dy != 0 ? margin->scroll(0, dy) : margin->update(0, rect.y(), margin->width(), rect.height());
  });
  QObject::connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { placeMargin(); });
  placeMargin();
}

void SourceView::setText(const QString& text) {
  setPlainText(text);
  placeMargin();
}

void SourceView::setMarks(std::map<int, LineMark> m) {
  marks = std::move(m);
  margin->update();
}

void SourceView::setCurrentLine(int line) {
  current = line;
  if (line > 0) {
    setTextCursor(QTextCursor(document()->findBlockByNumber(line - 1)));
    centerCursor();
  }
  showCurrentLine();
  margin->update();
}

void SourceView::showCurrentLine() {
  QList<QTextEdit::ExtraSelection> selections;
  if (current > 0) {
    QTextEdit::ExtraSelection line;
    QColor color = look().warning;
    color.setAlpha(70);
    line.format.setBackground(color);
    line.format.setProperty(QTextFormat::FullWidthSelection, true);
    line.cursor = QTextCursor(document()->findBlockByNumber(current - 1));
    selections << line;
  }
  setExtraSelections(selections);
}

int SourceView::marginWidth() const {
  return kDotRoom + fontMetrics().horizontalAdvance(QString::number(std::max(blockCount(), 99))) + kGap;
}

void SourceView::placeMargin() {
  setViewportMargins(marginWidth(), 0, 0, 0);
  const QRect inner = contentsRect();
  margin->setGeometry(inner.left(), inner.top(), marginWidth(), inner.height());
}

int SourceView::lineAt(int y) const {
  for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
    const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
    if (y < place.bottom()) return y >= place.top() ? block.blockNumber() + 1 : 0;
  }
  return 0;
}

void SourceView::paintMargin(QPaintEvent* event) {
  QPainter painter(margin);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(font());
  painter.fillRect(event->rect(), look().window);
  const int height = fontMetrics().height();
  for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
    const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
    if (place.top() > event->rect().bottom()) break;
    const int line = block.blockNumber() + 1;
    painter.setPen(line == current ? look().text : look().faint);
    painter.drawText(QRectF(kDotRoom, place.top(), margin->width() - kDotRoom - kGap / 2.0, height), Qt::AlignRight,
                     QString::number(line));
    const auto mark = marks.find(line);
    if (mark == marks.end()) continue;
    painter.setPen(QPen(look().error, 1.5));
    painter.setBrush(mark->second == LineMark::breakpoint ? QBrush(look().error) : QBrush(Qt::NoBrush));
    painter.drawEllipse(QRectF(4, place.top() + (height - kDot) / 2.0, kDot, kDot));
  }
}

void SourceView::resizeEvent(QResizeEvent* event) {
  QPlainTextEdit::resizeEvent(event);
  placeMargin();
}

void SourceView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) showCurrentLine();
  QPlainTextEdit::changeEvent(event);
}
