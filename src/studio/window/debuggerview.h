// The page's scripts under the debugger: sources with breakpoints and, while the page stands, its calls and variables.
#pragma once

#include <QWidget>
#include <functional>

#include "studio/debug/debugdesk.h"

class QComboBox;
class QEventLoop;
class QLabel;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;
class SourceView;

class DebuggerView : public QWidget {
 public:
  explicit DebuggerView(DebugDesk& desk);
  ~DebuggerView() override;

  // The sources may have changed, or more code may be known.
  void refresh();
  void showMarks();  // breakpoints may have changed
  // Shows where the page stands, and waits for somebody to say how it goes on.
  BobResume stand(const BobStop& stop);
  void goOn(BobResume how);  // nothing happens when the page doesn't stand
  bool isStanding() const { return loop != nullptr; }
  // In the call that is shown, while the page stands. False for an error, which the answer is then.
  bool evaluate(const QString& text, QString* answer);
  // What a source is to hold in the place of what its file does, or null; may be empty.
  std::function<const std::string*(const std::string& file)> edited;
  std::function<void()> wanted;  // it has something to show

 private:
  QToolBar* newTools();
  void showFile(const std::string& file);
  void showCalls();
  void showVariables();
  void unfold(QTreeWidgetItem* item);
  void addVariable(QTreeWidgetItem* to, const BobVariableView& view);
  void setVariable(QTreeWidgetItem* item);
  void openMenu(int line, const QPoint& global);
  size_t frame() const;

  DebugDesk& desk;
  QComboBox* files;
  SourceView* source;
  QTreeWidget *calls, *variables;
  QLabel* why;
  QList<QAction*> standingTools;
  QAction *pauseTool, *errorsTool;
  std::string shownFile;
  QEventLoop* loop = nullptr;  // while the page stands
  BobResume answer = BobResume::run;
  bool isFilling = false;
};
