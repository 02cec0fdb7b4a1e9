// The author's window: the screen with a remote control beside it, the inspector, and the console below.
#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <memory>

#include "studio/control/controlprotocol.h"
#include "studio/control/controlsocket.h"
#include "studio/debug/attachededitor.h"
#include "studio/debug/debugdesk.h"
#include "studio/edit/sourceedits.h"
#include "studio/timeline/timeline.h"
#include "studio/window/consoleview.h"
#include "studio/window/debuggerview.h"
#include "studio/window/driver.h"
#include "studio/window/errorbar.h"
#include "studio/window/inspectorview.h"
#include "studio/window/loupeview.h"
#include "studio/window/memoryview.h"
#include "studio/window/remoteview.h"
#include "studio/window/screenview.h"
#include "studio/window/timelineview.h"

class QLabel;
class QMenu;
class QScrollArea;
class QTabWidget;
class QToolBar;

class StudioWindow : public QMainWindow {
 public:
  explicit StudioWindow(const std::string& page, FileReach reach = FileReach::page);

  // Lets others drive the page through a local socket. Throws KitError when it can't be made.
  void listenAt(const std::string& path);
  // Lets an editor debug it, by the Debug Adapter Protocol. Throws as that does.
  void debugAt(const std::string& path);

  PageDriver& pageDriver() { return driver; }
  ScreenView& screenView() { return *screen; }
  RemoteView& remoteView() { return *remote; }
  ConsoleView& consoleView() { return *console; }
  ErrorBar& errorBar() { return *errors; }
  InspectorView& inspectorView() { return *inspector; }
  DebuggerView& debuggerView() { return *debugger; }
  DebugDesk& desk() { return debugDesk; }

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildViews();
  void followDebugger();
  BobResume stand(const BobStop& stop);
  void callOften(std::function<void()> work);
  void press(const QString& key);
  void enter(const QString& line);
  QStringList wordsToGoOnWith(bool isAfterDot);
  void showPage();
  void showErrors();
  void showPointed(std::optional<QPoint> pixel);
  void setZoom(int factor);
  void fitZoom();
  void openPlace(const KitMessage& message);
  void showReplay();
  QString nameWith(const char* extension) const;  // of a file for something of the page
  void tryTo(const QString& failed, const std::function<void()>& work);
  void savePicture();
  void setRecording(bool on);
  void openRecording();

  // In studiotools.cpp.
  void buildTools();
  void addTimeTools(QToolBar* bar);
  void addRecordingTools(QToolBar* bar);
  void addLookingTools(QToolBar* bar);
  void addMoreTools(QToolBar* bar);
  QAction* tool(QToolBar* bar, const QString& text, const char* keys, const QIcon& icon, std::function<void(bool)> work,
                bool isSwitch = false);
  QAction* entry(QMenu* menu, const QString& text, const char* keys, std::function<void(bool)> work,
                 std::optional<bool> isOn = std::nullopt);

  // In studiomarks.cpp.
  void showMarks();
  void setFocusMap(bool on);

  // In studioedits.cpp.
  std::optional<WidgetSource> chosenSource();
  void setValue(const std::string& attribute, const std::optional<std::string>& value);
  void drag(const Bounds& place, bool isOver);
  void followDrag();
  void nudge(const Bounds& to);
  void place(const Bounds& shown, const Bounds& given, const Bounds& to, uint32_t number);
  void edit(const std::function<void()>& change);
  bool saveEdits();
  bool mayDropEdits();
  void showEdits();

  const std::string page;
  Timeline timeline;
  MemoryMeter memory;
  SourceEdits edits;
  DebugDesk debugDesk;
  PageDriver driver;
  ScreenView* screen;
  QScrollArea* surround;
  RemoteView* remote;
  LoupeView* loupe;
  ConsoleView* console;
  QTabWidget* tabs;
  ErrorBar* errors = nullptr;
  InspectorView* inspector;
  TimelineView* timelineView;
  MemoryView* memoryView;
  DebuggerView* debugger;
  PageRun* inspected = nullptr;
  std::unique_ptr<ControlProtocol> protocol;
  std::unique_ptr<ControlSocket> control;
  std::unique_ptr<AttachedEditor> editor;
  QLabel *state, *zoomText;
  QAction *pauseAction, *stopAction, *saveAction, *undoAction, *redoAction;
  std::optional<QPoint> pointedAt;
  QAction* pickAction;
  bool showsFocusMap = false, wasReplaying = false;
  size_t shownComplaints = 0;  // of the run
  uint64_t shownRows = 0;      // of the timeline, when the page was shown last

  struct Dragged {
    Bounds shown, given;  // when it began: on the screen, and in the source
    Bounds wanted;
    uint32_t number;
    bool isOver, isWaiting;  // for the page to be built
  };
  std::optional<Dragged> dragged;
  uint32_t drags = 0;
  std::string nudgedPath;  // of the widget that was moved by arrows last
};
