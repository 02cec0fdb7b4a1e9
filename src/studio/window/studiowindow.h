// The author's window: the screen with a remote control beside it, the inspector, and the console below.
#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <memory>

#include "studio/control/controlprotocol.h"
#include "studio/control/controlsocket.h"
#include "studio/edit/sourceedits.h"
#include "studio/timeline/timeline.h"
#include "studio/window/consoleview.h"
#include "studio/window/driver.h"
#include "studio/window/errorbar.h"
#include "studio/window/inspectorview.h"
#include "studio/window/loupeview.h"
#include "studio/window/memoryview.h"
#include "studio/window/remoteview.h"
#include "studio/window/screenview.h"
#include "studio/window/timelineview.h"

class QLabel;
class QScrollArea;
class QToolBar;

class StudioWindow : public QMainWindow {
 public:
  explicit StudioWindow(const std::string& page);

  // Lets others drive the page through a local socket. Throws KitError when it can't be made.
  void listenAt(const std::string& path);

  PageDriver& pageDriver() { return driver; }
  ScreenView& screenView() { return *screen; }
  RemoteView& remoteView() { return *remote; }
  ConsoleView& consoleView() { return *console; }
  ErrorBar& errorBar() { return *errors; }
  InspectorView& inspectorView() { return *inspector; }

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void buildViews();
  void buildTools();
  QAction* tool(QToolBar* bar, const QString& text, const char* keys, const QIcon& icon, std::function<void(bool)> work,
                bool isSwitch = false);
  void press(const QString& key);
  void showPage();
  void showErrors();
  void showMarks();
  void showPointed(std::optional<QPoint> pixel);
  void setZoom(int factor);
  void fitZoom();
  void openPlace(const KitMessage& message);
  void savePicture();
  void setRecording(bool on);
  void setValue(const std::string& attribute, const std::string& value);
  void edit(const std::function<void()>& change);
  bool saveEdits();
  bool mayDropEdits();
  void showEdits();

  const std::string page;
  Timeline timeline;
  MemoryMeter memory;
  SourceEdits edits;
  PageDriver driver;
  ScreenView* screen;
  QScrollArea* surround;
  RemoteView* remote;
  LoupeView* loupe;
  ConsoleView* console;
  ErrorBar* errors = nullptr;
  InspectorView* inspector;
  TimelineView* timelineView;
  MemoryView* memoryView;
  PageRun* inspected = nullptr;
  std::unique_ptr<ControlProtocol> protocol;
  std::unique_ptr<ControlSocket> control;
  QLabel *state, *zoomText;
  QAction *pauseAction, *stopAction, *saveAction, *undoAction, *redoAction;
  std::optional<QPoint> pointedAt;
  QAction* pickAction;
  bool showsFocusMap = false;
  size_t shownComplaints = 0;  // of the run
  uint64_t shownRows = 0;      // of the timeline, when the page was shown last
};
