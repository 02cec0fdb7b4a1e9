// The text of a source with its line numbers, its breakpoints, and the line where the page stands.
#pragma once

#include <QPlainTextEdit>
#include <functional>
#include <map>

enum class LineMark { breakpoint, elsewhere };  // elsewhere: one that is wanted in a line without code

class SourceView : public QPlainTextEdit {
 public:
  SourceView();

  void setText(const QString& text);
  void setMarks(std::map<int, LineMark> marks);  // by line, from 1
  void setCurrentLine(int line);                 // 0 for none; scrolls to it
  int lineUnderCursor() const { return textCursor().blockNumber() + 1; }

  std::function<void(int line)> lineClicked;                       // in the margin
  std::function<void(int line, const QPoint& global)> menuWanted;  // there

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Margin;

  int marginWidth() const;
  int lineAt(int y) const;  // in the margin; 0 for none
  void placeMargin();
  void paintMargin(QPaintEvent* event);
  void showCurrentLine();

  Margin* margin;
  std::map<int, LineMark> marks;
  int current = 0;
};
