#include "studio/window/consoleview.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextBlock>
#include <QVBoxLayout>
#include <algorithm>

#include "studio/window/look.h"

namespace {

constexpr int kMostLines = 20000;
constexpr size_t kMostText = 4 << 20;  // bytes that are shown at once
constexpr size_t kMostHistory = 500;
constexpr int kMostOffered = 60;                         // words
constexpr int kInkProperty = QTextFormat::UserProperty;  // of a piece of text

// The console's characters are bytes, and are shown as such.
QString textOf(std::string_view bytes) { return QString::fromLatin1(bytes.data(), qsizetype(bytes.size())); }

// Where what is worth showing begins: of more lines the output would throw the first away again.
size_t beginOfLast(std::string_view log) {
  const size_t least = log.size() - std::min(log.size(), kMostText);
  size_t begin = log.size();
  for (int lines = 0; lines < kMostLines; ++lines) {
    if (begin <= least) return least;
    begin = log.rfind('\n', begin - 1);
    if (begin == log.npos) return least;
  }
  return std::max(begin + 1, least);
}

}  // namespace

ConsoleView::ConsoleView() : output(new QPlainTextEdit), input(new QLineEdit), filter(new QLineEdit) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  output->setReadOnly(true);
  output->setMaximumBlockCount(kMostLines);
  output->setFont(fixedFont());
  output->setFrameStyle(0);
  output->setAccessibleName("Messages");
  column->addWidget(output, 1);

  auto* row = new QHBoxLayout;
  row->setContentsMargins(0, 1, 0, 0);
  row->setSpacing(1);
  for (QLineEdit* edit : {input, filter}) {
    edit->setFont(fixedFont());
    edit->setTextMargins(6, 4, 6, 4);
  }
  input->setPlaceholderText(
      "A statement, run in the page; ?value shows what lies in it (Tab completes, \u2191 brings back)");
  input->setAccessibleName("Statement");
  filter->setPlaceholderText("Filter");
  filter->setClearButtonEnabled(true);
  filter->setMaximumWidth(180);
  filter->setToolTip("Show the lines that have this");
  row->addWidget(input, 1);
  row->addWidget(filter);
  column->addLayout(row);

  input->installEventFilter(this);
  output->viewport()->installEventFilter(this);
  output->viewport()->setMouseTracking(true);
  QObject::connect(input, &QLineEdit::returnPressed, this, [this] {
    const QString line = input->text();
    if (!line.isEmpty() && (history.isEmpty() || history.back() != line)) history.push_back(line);
    if (history.size() > qsizetype(kMostHistory)) history.removeFirst();
    recalled = int(history.size());
    input->clear();
    append("> " + line + "\n", Ink::faint);
    if (entered) entered(line);
  });
  QObject::connect(filter, &QLineEdit::textChanged, this, [this] { applyFilter(); });
}

void ConsoleView::focusInput() { input->setFocus(); }

void ConsoleView::focusFilter() { filter->setFocus(); }

void ConsoleView::setLog(uint64_t now, const std::string& log, const std::vector<std::string_view>& complaints,
                         const Placed& placed) {
  if (now == opening && log.size() == seen) return;
  if (now != opening) {
    if (seen > 0) append(QString(24, QChar(0x2500)) + "\n", Ink::faint);
    opening = now;
    seen = 0;
  }
  size_t at = seen + beginOfLast(std::string_view(log).substr(seen));
  for (const std::string_view complaint : complaints) {
    const size_t begin = size_t(complaint.data() - log.data()), end = begin + complaint.size();
    if (end <= at) continue;
    if (begin > at) append(textOf(std::string_view(log).substr(at, begin - at)), Ink::text);
    at = std::max(at, begin);
    appendWithPlaces(textOf(placed(std::string_view(log).substr(at, end - at))), Ink::error);
    at = end;
  }
  append(textOf(std::string_view(log).substr(at)), Ink::text);
  seen = log.size();
  if (!filter->text().isEmpty()) applyFilter();
}

QColor ConsoleView::colorOf(Ink ink) {
  switch (ink) {
    case Ink::text: return look().text;
    case Ink::faint: return look().faint;
    case Ink::warning: return look().warning;
    case Ink::error: return look().error;
    case Ink::place: return look().accent;
  }
  return look().text;
}

void ConsoleView::append(const QString& text, Ink ink, const QString& place) {
  if (text.isEmpty()) return;
  QScrollBar* bar = output->verticalScrollBar();
  const bool follows = bar->value() >= bar->maximum() - 1;
  QTextCursor cursor(output->document());
  cursor.movePosition(QTextCursor::End);
  QTextCharFormat format;
  format.setForeground(colorOf(ink));
  format.setProperty(kInkProperty, int(ink));
  if (!place.isEmpty()) {
    format.setAnchor(true);
    format.setAnchorHref(place);
    format.setFontUnderline(true);
  }
  cursor.insertText(text, format);
  if (follows) bar->setValue(bar->maximum());
}

// A place is what a line ends in: " at FILE:LINE".
void ConsoleView::appendWithPlaces(const QString& text, Ink ink) {
  static const QRegularExpression kPlace(" at (.+:[0-9]+)$", QRegularExpression::MultilineOption);
  qsizetype done = 0;
  for (auto places = kPlace.globalMatch(text); places.hasNext();) {
    const QRegularExpressionMatch place = places.next();
    append(text.mid(done, place.capturedStart(1) - done), ink);
    append(place.captured(1), Ink::place, place.captured(1));
    done = place.capturedEnd(1);
  }
  append(text.mid(done), ink);
}

void ConsoleView::print(const QString& text) { append(text, Ink::text); }

void ConsoleView::warn(const KitMessage& message) {
  QString text = QString::fromStdString(message.text);
  if (message.line > 0) text += QString(" at %1:%2").arg(QString::fromStdString(message.file)).arg(message.line);
  appendWithPlaces(text + "\n", Ink::warning);
}

void ConsoleView::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) colorAgain();
  QWidget::changeEvent(event);
}

// What was written in the colours of another look.
void ConsoleView::colorAgain() {
  QTextCursor cursor(output->document());
  for (QTextBlock block = output->document()->begin(); block.isValid(); block = block.next())
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      QTextCharFormat format;
      format.setForeground(colorOf(Ink(part.fragment().charFormat().intProperty(kInkProperty))));
      cursor.setPosition(part.fragment().position());
      cursor.setPosition(part.fragment().position() + part.fragment().length(), QTextCursor::KeepAnchor);
      cursor.mergeCharFormat(format);
    }
}

void ConsoleView::applyFilter() {
  for (QTextBlock block = output->document()->begin(); block.isValid(); block = block.next())
    block.setVisible(block.text().contains(filter->text(), Qt::CaseInsensitive));
  output->document()->markContentsDirty(0, output->document()->characterCount());
  output->viewport()->update();
}

// A click on a place, and the pointer over one.
void ConsoleView::point(const QMouseEvent& event) {
  const QString place = output->anchorAt(event.position().toPoint());
  output->viewport()->setCursor(place.isEmpty() ? Qt::IBeamCursor : Qt::PointingHandCursor);
  if (event.type() != QEvent::MouseButtonRelease || place.isEmpty() || output->textCursor().hasSelection()) return;
  const qsizetype colon = place.lastIndexOf(':');
  if (placeClicked) placeClicked({place.left(colon).toStdString(), place.mid(colon + 1).toInt(), ""});
}

bool ConsoleView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == output->viewport() &&
      (event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonRelease))
    point(*static_cast<QMouseEvent*>(event));
  if (watched != input || event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Up: recall(-1); return true;
    case Qt::Key_Down: recall(1); return true;
    case Qt::Key_Tab: complete(); return true;
    case Qt::Key_Escape:
      if (left) left();
      return true;
    default: return QWidget::eventFilter(watched, event);
  }
}

void ConsoleView::recall(int step) {
  if (recalled == history.size()) typed = input->text();
  recalled = std::clamp(recalled + step, 0, int(history.size()));
  input->setText(recalled == history.size() ? typed : history[recalled]);
}

// To as much as all words that begin so have in common; a further press shows them.
void ConsoleView::complete() {
  static const QRegularExpression kWord("[A-Za-z_][A-Za-z0-9_]*$");
  const QString before = input->text().left(input->cursorPosition());
  const QString begun = kWord.match(before).captured();
  const bool isAfterDot = before.chopped(begun.size()).endsWith('.');
  if ((begun.isEmpty() && !isAfterDot) || !wordsWanted) return;
  QStringList fitting;
  for (const QString& word : wordsWanted(isAfterDot))
    if (word.startsWith(begun) && word != begun) fitting.push_back(word);
  if (fitting.isEmpty()) return;
  QString common = fitting.front();
  for (const QString& word : fitting)
    while (!word.startsWith(common)) common.chop(1);
  if (common.size() > begun.size()) {
    input->insert(common.mid(begun.size()));
  } else {
    const qsizetype more = fitting.size() - kMostOffered;
    const QString end = more > 0 ? QString("  ... %1 more").arg(more) : QString();
    append("  " + fitting.mid(0, kMostOffered).join("  ") + end + "\n", Ink::faint);
  }
}
