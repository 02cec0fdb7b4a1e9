// The message console: what the system writes, and a line to type, with the lines before it on the arrow keys.
#pragma once

#include <QWidget>
#include <functional>
#include <string_view>
#include <vector>

#include "kit/errors.h"

class QLineEdit;
class QMouseEvent;
class QPlainTextEdit;

class ConsoleView : public QWidget {
 public:
  ConsoleView();

  // The log as it is now, and the parts of it that say that something is wrong. Only what is new is added; the log of
  // another opening of the page begins below a line.
  // `placed` gives a complaint with the places of its code, which can be clicked.
  using Placed = std::function<std::string(std::string_view complaint)>;
  void setLog(uint64_t opening, const std::string& log, const std::vector<std::string_view>& complaints,
              const Placed& placed);
  void print(const QString& text);       // what isn't of the log
  void warn(const KitMessage& message);  // of the builder, about the page
  void focusInput();
  void focusFilter();

  std::function<void(const QString& line)> entered;
  std::function<void(const KitMessage& place)> placeClicked;
  std::function<void()> left;                               // with Esc
  std::function<QStringList(bool isAfterDot)> wordsWanted;  // that the word at the cursor may become

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class Ink { text, faint, warning, error, place };  // whose colours change with the look

  static QColor colorOf(Ink ink);
  void append(const QString& text, Ink ink, const QString& place = {});
  void appendWithPlaces(const QString& text, Ink ink);
  void colorAgain();
  void applyFilter();
  void point(const QMouseEvent& event);
  void recall(int step);
  void complete();

  QPlainTextEdit* output;
  QLineEdit* input;
  QLineEdit* filter;
  uint64_t opening = 0;
  size_t seen = 0;  // bytes of its log
  QStringList history;
  int recalled = 0;  // in the history; its size for the line that is being typed
  QString typed;
};
