#include "host/qt/consoleedit.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QTextBlock>
#include <algorithm>
#include <string>
#include <utility>

#include "host/qt/windows1252.h"

ConsoleEdit::ConsoleEdit(QWidget* parent) : QPlainTextEdit(parent) {
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  setUndoRedoEnabled(false);
}

int ConsoleEdit::textLength() const { return bytePosition(document()->characterCount() - 1); }

std::string ConsoleEdit::text() const {
  std::string bytes;
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockNumber() > 0) bytes += "\r\n";
    bytes += bytesFromText(block.text());
  }
  return bytes;
}

int ConsoleEdit::lineCount() const { return document()->blockCount(); }

int ConsoleEdit::lineIndex(int line) const {
  const QTextBlock block = document()->findBlockByNumber(line);
  return block.isValid() ? block.position() + line : -1;
}

int ConsoleEdit::lineFromChar(int position) const {
  int low = 0, high = lineCount();
  while (high - low > 1) {
    const int middle = (low + high) / 2;
    (lineIndex(middle) <= position ? low : high) = middle;
  }
  return low;
}

int ConsoleEdit::lineLength(int position) const {
  return document()->findBlockByNumber(lineFromChar(position)).length() - 1;
}

EditSelection ConsoleEdit::selection() const {
  const QTextCursor cursor = textCursor();
  return {bytePosition(cursor.selectionStart()), bytePosition(cursor.selectionEnd())};
}

void ConsoleEdit::select(EditSelection selection) {
  if (selection.end < 0) selection.end = textLength();
  QTextCursor cursor = textCursor();
  cursor.setPosition(documentPosition(selection.start));
  cursor.setPosition(documentPosition(selection.end), QTextCursor::KeepAnchor);
  setTextCursor(cursor);
}

void ConsoleEdit::replaceSelection(std::string_view text) {
  QTextCursor cursor = textCursor();
  std::string bytes = std::exchange(heldReturn, false) ? "\r" : "";
  bytes += text;
  // The console's buffer may end between a CR and its LF, which are one break.
  if (bytes.ends_with('\r')) {
    bytes.pop_back();
    heldReturn = true;
  }
  cursor.insertText(textFromBytes(bytes));
  setTextCursor(cursor);
  ensureCursorVisible();
}

void ConsoleEdit::keyPressEvent(QKeyEvent* event) {
  if (event->text() != "\r" || !onEnter) return QPlainTextEdit::keyPressEvent(event);
  // With Shift the control would break the row inside the line.
  onEnter([this] {
    textCursor().insertBlock();
    ensureCursorVisible();
  });
}

int ConsoleEdit::bytePosition(int documentPosition) const {
  return documentPosition + document()->findBlock(documentPosition).blockNumber();
}

int ConsoleEdit::documentPosition(int bytePosition) const {
  bytePosition = std::clamp(bytePosition, 0, textLength());
  const int line = lineFromChar(bytePosition);
  const QTextBlock block = document()->findBlockByNumber(line);
  return std::min(bytePosition - line, block.position() + block.length() - 1);
}
