// The studio's tools: what its bar has, with their keys.
#include <QActionGroup>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>

#include "studio/window/icons.h"
#include "studio/window/look.h"
#include "studio/window/studiowindow.h"

namespace {

QString withKey(const QString& text, const QKeySequence& keys) {
  return keys.isEmpty() ? text : QString("%1 (%2)").arg(text, keys.toString(QKeySequence::NativeText));
}

// A button of the bar that opens a menu, with the key that does.
QMenu* addMenu(QToolBar* bar, QToolButton* button, const QString& tip, const char* keys) {
  button->setToolTip(withKey(tip, QKeySequence(keys)));
  button->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(button);
  button->setMenu(menu);
  button->setShortcut(QKeySequence(keys));
  bar->addWidget(button);
  return menu;
}

}  // namespace

QAction* StudioWindow::tool(QToolBar* bar, const QString& text, const char* keys, const QIcon& icon,
                            std::function<void(bool)> work, bool isSwitch) {
  QAction* action = bar->addAction(icon, text);
  action->setCheckable(isSwitch);
  action->setShortcut(QKeySequence(keys));
  action->setToolTip(withKey(text, action->shortcut()));
  QObject::connect(action, &QAction::triggered, this, std::move(work));
  return action;
}

// The window has the action, too, so that its key works while the menu is closed.
QAction* StudioWindow::entry(QMenu* menu, const QString& text, const char* keys, std::function<void(bool)> work,
                             std::optional<bool> isOn) {
  QAction* action = menu->addAction(text);
  action->setShortcut(QKeySequence(keys));
  action->setCheckable(isOn.has_value());
  action->setChecked(isOn.value_or(false));
  addAction(action);
  QObject::connect(action, &QAction::triggered, this, std::move(work));
  return action;
}

void StudioWindow::buildTools() {
  QToolBar* bar = addToolBar("Tools");
  bar->setMovable(false);
  bar->setIconSize(QSize(20, 20));
  tool(bar, "Open again, with what was done so far", "F5", signIcon(Sign::reload), [this](bool) { driver.reload(); });
  tool(bar, "Start afresh", "Ctrl+R", signIcon(Sign::restart), [this](bool) { driver.restart(); });
  bar->addSeparator();
  addTimeTools(bar);
  bar->addSeparator();
  addRecordingTools(bar);
  bar->addSeparator();
  saveAction = tool(bar, "Save what was edited", "Ctrl+S", signIcon(Sign::save), [this](bool) { saveEdits(); });
  undoAction = tool(bar, "Undo", "Ctrl+Z", signIcon(Sign::undo), [this](bool) { edit([this] { edits.undo(); }); });
  redoAction =
      tool(bar, "Redo", "Ctrl+Shift+Z", signIcon(Sign::redo), [this](bool) { edit([this] { edits.redo(); }); });
  showEdits();
  bar->addSeparator();
  addLookingTools(bar);
  auto* room = new QWidget;
  room->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar->addWidget(room);
  addMoreTools(bar);
}

void StudioWindow::addTimeTools(QToolBar* bar) {
  pauseAction = tool(
      bar, "Pause", "Ctrl+P", signIcon(Sign::pause), [this](bool on) { driver.setPaused(on); }, true);
  tool(bar, "One step: a millisecond", "Ctrl+T", signIcon(Sign::step), [this](bool) {
    pauseAction->setChecked(true);
    driver.setPaused(true);
    driver.step();
  });
  stopAction = tool(bar, "End the script that runs", "Ctrl+.", signIcon(Sign::stop), [this](bool) { driver.stop(); });
  stopAction->setEnabled(false);

  auto* speed = new QToolButton;
  speed->setText("1\u00d7");
  QMenu* speeds = addMenu(bar, speed, "How fast time passes", "Ctrl+E");
  auto* one = new QActionGroup(speeds);
  for (const auto& [label, keys, factor] :
       {std::tuple("0.1\u00d7", "Ctrl+1", 0.1), std::tuple("0.5\u00d7", "Ctrl+2", 0.5),
        std::tuple("1\u00d7", "Ctrl+3", 1.0), std::tuple("2\u00d7", "Ctrl+4", 2.0),
        std::tuple("10\u00d7", "Ctrl+5", 10.0)}) {
    const QString text = QString::fromUtf8(label);
    one->addAction(entry(
        speeds, text, keys,
        [this, speed, text, factor = factor](bool) {
          driver.setSpeed(factor);
          speed->setText(text);
        },
        factor == 1));
  }
}

void StudioWindow::addRecordingTools(QToolBar* bar) {
  tool(
      bar, "Record: start afresh, and keep what is done", "Ctrl+Shift+R", signIcon(Sign::record),
      [this](bool on) { setRecording(on); }, true);
  auto* play = new QToolButton;
  play->setIcon(signIcon(Sign::play));
  QMenu* plays = addMenu(bar, play, "Play what was done", "Ctrl+Shift+L");
  entry(plays, "Once more, what was done since the start", "Ctrl+Shift+P",
        [this](bool) { driver.play(driver.session().recording().actions); });
  entry(plays, "A recording\u2026", "Ctrl+Shift+O", [this](bool) { openRecording(); });
  tool(bar, "Save the picture", "Ctrl+Shift+S", signIcon(Sign::picture), [this](bool) { savePicture(); });
}

void StudioWindow::addLookingTools(QToolBar* bar) {
  pickAction = tool(
      bar, "Find a widget: point at it", "Ctrl+I", signIcon(Sign::pick), [this](bool on) { screen->setPicking(on); },
      true);
  tool(
      bar, "Focus map: where the keys lead", "Ctrl+M", signIcon(Sign::focus), [this](bool on) { setFocusMap(on); },
      true);
  tool(
      bar, "Pixel grid, from 4\u00d7 on", "Ctrl+G", signIcon(Sign::grid), [this](bool on) { screen->setGrid(on); },
      true)
      ->setChecked(true);

  auto* shape = new QToolButton;
  shape->setIcon(signIcon(Sign::safe));
  QMenu* shapes = addMenu(bar, shape, "The set: its shape, safe areas, what it cuts off", "Ctrl+W");
  auto* one = new QActionGroup(shapes);
  for (const auto& [label, keys, value] : {std::tuple("Square pixels", "Ctrl+7", ScreenShape::square),
                                           std::tuple("A set of 4:3", "Ctrl+8", ScreenShape::standard),
                                           std::tuple("A set of 16:9", "Ctrl+9", ScreenShape::wide)})
    one->addAction(entry(
        shapes, label, keys, [this, value = value](bool) { screen->setShape(value); }, value == ScreenShape::square));
  shapes->addSeparator();
  entry(
      shapes, "Safe areas: 90 % and 80 %", "Ctrl+A", [this](bool on) { screen->setSafeAreas(on); }, false);
  entry(
      shapes, "Hide what a set cuts off", "Ctrl+O", [this](bool on) { screen->setOverscan(on); }, false);
  bar->addSeparator();

  tool(bar, "Smaller", "Ctrl+-", signIcon(Sign::zoomOut), [this](bool) { setZoom(screen->zoom() - 1); });
  zoomText = new QLabel("1\u00d7");
  zoomText->setMinimumWidth(28);
  zoomText->setAlignment(Qt::AlignCenter);
  bar->addWidget(zoomText);
  tool(bar, "Larger", "Ctrl++", signIcon(Sign::zoomIn), [this](bool) { setZoom(screen->zoom() + 1); });
  tool(bar, "As large as fits", "Ctrl+0", signIcon(Sign::fit), [this](bool) { fitZoom(); });
}

void StudioWindow::addMoreTools(QToolBar* bar) {
  auto* more = new QToolButton;
  more->setText("\u2261");
  QMenu* menu = addMenu(bar, more, "More", "Alt+0");
  entry(
      menu, "Keep what was done over a save", "Ctrl+K", [this](bool on) { driver.setKeepsState(on); }, true);
  entry(
      menu, "Dark", "Ctrl+D", [](bool on) { applyLook(*qApp, on); }, lookIsDark());
  menu->addSeparator();
  entry(menu, "To the screen", "Alt+1", [this](bool) { screen->setFocus(); });
  entry(menu, "To the console", "Ctrl+L", [this](bool) { console->focusInput(); });
  entry(menu, "Filter the console", "Ctrl+F", [this](bool) { console->focusFilter(); });
  for (const auto& [label, keys, index] : {std::tuple("Inspector", "Alt+2", 0), std::tuple("Timeline", "Alt+3", 1),
                                           std::tuple("Memory", "Alt+4", 2), std::tuple("Debugger", "Alt+5", 3)})
    entry(menu, label, keys, [this, index = index](bool) {
      tabs->setCurrentIndex(index);
      tabs->currentWidget()->setFocus();
    });
}
