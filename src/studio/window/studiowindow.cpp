#include "studio/window/studiowindow.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QScrollArea>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

#include "engine/inspect.h"
#include "engine/screen/display.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "studio/editor/openplace.h"
#include "studio/editor/scripterrors.h"
#include "studio/inspector/focusmap.h"
#include "studio/record/saverecording.h"
#include "studio/timeline/runwatch.h"
#include "studio/window/icons.h"
#include "studio/window/look.h"

namespace {

// The pixel as the player stores it.
QString storedPixel(Engine& engine, QPoint at) {
  const hsGBitmap* bitmap = engine.display ? &engine.display->frameBuffer() : nullptr;
  if (!bitmap) return {};
  if (engine.display->depth() == 8) return QString("index %1").arg(bitmap->Row<uint8_t>(at.y())[at.x()]);
  const uint16_t word = bitmap->Row<uint16_t>(at.y())[at.x()];
  return QString("word %1").arg(word, 4, 16, QChar('0'));
}

// What a line of the console may go on with: names of widgets, and what every page's scripts have.
QStringList wordsOf(Engine& engine) {
  QStringList words{"widgets",  "textStyles", "topFrame", "frame",      "parent",      "stdout",  "value",
                    "minValue", "maxValue",   "bgColor",  "background", "highlighted", "LoadPage"};
  for (const WidgetView& widget : inspectWidgets(engine))
    if (!widget.name.empty()) words << QString::fromStdString(widget.name);
  words.removeDuplicates();
  words.sort();
  return words;
}

}  // namespace

StudioWindow::StudioWindow(const std::string& p) : page(p), driver(p) {
  setWindowTitle(QString::fromStdString(std::filesystem::path(page).filename().string()) + "[*] \u2013 Vistrel Studio");
  buildViews();
  buildTools();
  driver.prepare = [this](PageRun& run) { run.watch(std::make_unique<RunWatch>(run, timeline, memory)); };
  driver.edited = [this](const std::string& file) { return edits.unsavedText(file); };
  driver.changed = [this] { showPage(); };
  driver.opened = [this] {
    edits.lookAtDisk();
    showEdits();
    showErrors();
    showPage();
    state->setText(driver.session().errors().empty()
                       ? QString("Opened in %1 ms").arg(driver.lastReload(), 0, 'f', driver.lastReload() < 10 ? 1 : 0)
                       : QString("Not opened: the page before stays"));
  };
  driver.busy = [this] { stopAction->setEnabled(driver.isBusy()); };
}

void StudioWindow::buildViews() {
  screen = new ScreenView;
  surround = new QScrollArea;
  surround->setWidget(screen);
  surround->setAlignment(Qt::AlignCenter);
  surround->setFrameStyle(0);
  surround->setObjectName("surround");
  errors = new ErrorBar;
  console = new ConsoleView;
  remote = new RemoteView;
  inspector = new InspectorView;
  timelineView = new TimelineView(timeline);
  memoryView = new MemoryView(memory);
  loupe = new LoupeView;

  auto* middle = new QWidget;
  auto* column = new QVBoxLayout(middle);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(errors);
  column->addWidget(surround, 1);

  auto* side = new QWidget;
  auto* sideColumn = new QVBoxLayout(side);
  sideColumn->setContentsMargins(kGap + 2, kGap + 2, kGap + 2, kGap + 2);
  sideColumn->setSpacing(kGap + 6);
  sideColumn->addWidget(remote);
  sideColumn->addWidget(loupe);
  sideColumn->addStretch(1);
  auto* sideScroll = new QScrollArea;
  sideScroll->setWidget(side);
  sideScroll->setWidgetResizable(true);
  sideScroll->setFrameStyle(0);
  sideScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  sideScroll->setFixedWidth(remote->sizeHint().width() + 2 * kGap + 24);

  auto* rows = new QSplitter(Qt::Vertical);
  rows->addWidget(middle);
  rows->addWidget(console);
  rows->setStretchFactor(0, 1);
  rows->setSizes({500, 190});
  rows->setHandleWidth(1);

  auto* columns = new QSplitter(Qt::Horizontal);
  columns->addWidget(sideScroll);
  columns->addWidget(rows);
  auto* tabs = new QTabWidget;
  tabs->setDocumentMode(true);
  tabs->addTab(inspector, "Inspector");
  tabs->addTab(timelineView, "Timeline");
  tabs->addTab(memoryView, "Memory");
  QObject::connect(tabs, &QTabWidget::currentChanged, this, [this] {
    inspector->refresh();
    timelineView->refresh();
  });
  columns->addWidget(tabs);
  columns->setStretchFactor(1, 1);
  columns->setSizes({234, 760, 400});
  columns->setHandleWidth(1);
  columns->setChildrenCollapsible(false);
  setCentralWidget(columns);

  state = new QLabel;
  statusBar()->addWidget(state, 1);
  statusBar()->setSizeGripEnabled(false);

  screen->pressed = [this](const QString& name) { press(name); };
  screen->pointed = [this](std::optional<QPoint> pixel) { showPointed(pixel); };
  remote->pressed = [this](const QString& name) { press(name); };
  console->entered = [this](const QString& line) { driver.type(line.toLatin1().toStdString()); };
  screen->picked = [this](QPoint at) {
    if (!inspected || driver.isBusy()) return;
    const std::vector<WidgetId> there = widgetsAt(inspected->engine(), at.x(), at.y());
    if (!there.empty()) inspector->choose(there.front());
    pickAction->setChecked(false);
    screen->setPicking(false);
  };
  inspector->choiceChanged = [this] { showMarks(); };
  inspector->placeClicked = [this](const YamlPlace& place) {
    openPlace({place.file ? *place.file : std::string(), place.line, ""});
  };
  inspector->valueEdited = [this](const std::string& attribute, const std::string& value) {
    setValue(attribute, value);
  };
  errors->clicked = [this](const KitMessage& message) { openPlace(message); };
}

QAction* StudioWindow::tool(QToolBar* bar, const QString& text, const char* keys, const QIcon& icon,
                            std::function<void(bool)> work, bool isSwitch) {
  QAction* action = bar->addAction(icon, text);
  action->setCheckable(isSwitch);
  if (*keys) {
    action->setShortcut(QKeySequence(keys));
    action->setToolTip(QString("%1 (%2)").arg(text, action->shortcut().toString(QKeySequence::NativeText)));
  }
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
  speed->setToolTip("How fast time passes");
  speed->setPopupMode(QToolButton::InstantPopup);
  auto* speeds = new QMenu(speed);
  auto* oneSpeed = new QActionGroup(speeds);
  for (const auto& [label, factor] :
       {std::pair("0.1\u00d7", 0.1), std::pair("0.5\u00d7", 0.5), std::pair("1\u00d7", 1.0), std::pair("2\u00d7", 2.0),
        std::pair("10\u00d7", 10.0)}) {
    QAction* action = speeds->addAction(QString::fromUtf8(label));
    action->setCheckable(true);
    action->setChecked(factor == 1);
    oneSpeed->addAction(action);
    QObject::connect(action, &QAction::triggered, this, [this, speed, action, factor = factor] {
      driver.setSpeed(factor);
      speed->setText(action->text());
    });
  }
  speed->setMenu(speeds);
  bar->addWidget(speed);
  bar->addSeparator();
  tool(
      bar, "Record: start afresh, and keep what is done", "Ctrl+Shift+R", signIcon(Sign::record),
      [this](bool on) { setRecording(on); }, true);
  tool(bar, "Save the picture", "Ctrl+Shift+S", signIcon(Sign::picture), [this](bool) { savePicture(); });
  bar->addSeparator();
  saveAction = tool(bar, "Save what was edited", "Ctrl+S", signIcon(Sign::save), [this](bool) { saveEdits(); });
  undoAction = tool(bar, "Undo", "Ctrl+Z", signIcon(Sign::undo), [this](bool) { edit([this] { edits.undo(); }); });
  redoAction =
      tool(bar, "Redo", "Ctrl+Shift+Z", signIcon(Sign::redo), [this](bool) { edit([this] { edits.redo(); }); });
  showEdits();
  bar->addSeparator();
  pickAction = tool(
      bar, "Find a widget: point at it", "Ctrl+I", signIcon(Sign::pick), [this](bool on) { screen->setPicking(on); },
      true);
  tool(
      bar, "Focus map: where the keys lead", "Ctrl+M", signIcon(Sign::focus),
      [this](bool on) {
        showsFocusMap = on;
        showMarks();
      },
      true);
  tool(
      bar, "Pixel grid, from 4\u00d7 on", "Ctrl+G", signIcon(Sign::grid), [this](bool on) { screen->setGrid(on); },
      true)
      ->setChecked(true);

  auto* shape = new QToolButton;
  shape->setIcon(signIcon(Sign::safe));
  shape->setToolTip("The set: its shape, safe areas, what it cuts off");
  shape->setPopupMode(QToolButton::InstantPopup);
  auto* shapes = new QMenu(shape);
  auto* oneShape = new QActionGroup(shapes);
  for (const auto& [label, value] :
       {std::pair("Square pixels", ScreenShape::square), std::pair("A set of 4:3", ScreenShape::standard),
        std::pair("A set of 16:9", ScreenShape::wide)}) {
    QAction* action = shapes->addAction(label);
    action->setCheckable(true);
    action->setChecked(value == ScreenShape::square);
    oneShape->addAction(action);
    QObject::connect(action, &QAction::triggered, this, [this, value = value] { screen->setShape(value); });
  }
  shapes->addSeparator();
  const auto addSwitch = [&](const char* label, const char* keys, void (ScreenView::*set)(bool)) {
    QAction* action = shapes->addAction(label);
    action->setCheckable(true);
    action->setShortcut(QKeySequence(keys));
    addAction(action);
    QObject::connect(action, &QAction::triggered, this, [this, set](bool on) { (screen->*set)(on); });
  };
  addSwitch("Safe areas: 90 % and 80 %", "Ctrl+A", &ScreenView::setSafeAreas);
  addSwitch("Hide what a set cuts off", "Ctrl+O", &ScreenView::setOverscan);
  shape->setMenu(shapes);
  bar->addWidget(shape);
  bar->addSeparator();
  tool(bar, "Smaller", "Ctrl+-", signIcon(Sign::zoomOut), [this](bool) { setZoom(screen->zoom() - 1); });
  zoomText = new QLabel("1\u00d7");
  zoomText->setMinimumWidth(28);
  zoomText->setAlignment(Qt::AlignCenter);
  bar->addWidget(zoomText);
  tool(bar, "Larger", "Ctrl++", signIcon(Sign::zoomIn), [this](bool) { setZoom(screen->zoom() + 1); });
  tool(bar, "As large as fits", "Ctrl+0", signIcon(Sign::fit), [this](bool) { fitZoom(); });

  auto* room = new QWidget;
  room->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  bar->addWidget(room);
  auto* more = new QToolButton;
  more->setText("\u2261");
  more->setToolTip("More");
  more->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(more);
  QAction* keeps = menu->addAction("Keep what was done over a save");
  keeps->setCheckable(true);
  keeps->setChecked(true);
  QObject::connect(keeps, &QAction::triggered, this, [this](bool on) { driver.setKeepsState(on); });
  QAction* dark = menu->addAction("Dark");
  dark->setCheckable(true);
  dark->setChecked(lookIsDark());
  QObject::connect(dark, &QAction::triggered, this, [](bool on) { applyLook(*qApp, on); });
  more->setMenu(menu);
  bar->addWidget(more);
}

void StudioWindow::listenAt(const std::string& path) {
  constexpr int kBetweenLooks = 15;  // milliseconds
  protocol = std::make_unique<ControlProtocol>(driver.session());
  control = std::make_unique<ControlSocket>(path, [this](std::string_view line) {
    std::string answer;
    driver.obey([&] { answer = protocol->answer(line); });
    return answer;
  });
  auto* timer = new QTimer(this);
  QObject::connect(timer, &QTimer::timeout, this, [this] {
    if (!driver.isBusy()) control->step();
  });
  timer->start(kBetweenLooks);
}

void StudioWindow::press(const QString& key) {
  const uint64_t before = timeline.end();
  driver.key(key.toStdString());
  bool didSomething = false;
  for (uint64_t n = std::max(before, timeline.first()); n < timeline.end(); ++n)
    didSomething |= timeline.row(n).kind != TimelineKind::event;  // the key's own row says only that it was pressed
  remote->flash(key, didSomething);
}

void StudioWindow::showPage() {
  PageRun* run = driver.session().run();
  if (!run) return screen->show(nullptr);
  if (!driver.stopped().empty()) state->setText(QString::fromStdString("A script was " + driver.stopped()));
  if (run == inspected && timeline.end() == shownRows) return;  // nothing has happened
  shownRows = timeline.end();
  screen->show(run->player().window().data());
  if (run != inspected) {
    inspected = run;
    inspector->setRun(run);
    console->setWords(wordsOf(run->engine()));
  } else if (inspector->isVisible()) {
    inspector->refresh();
  }
  timelineView->refresh();
  memoryView->update();
  showMarks();
  if (run->complaints().size() != shownComplaints) showErrors();
  console->setLog(driver.session().openings(), run->log(), run->complaints());
  if (pointedAt) showPointed(pointedAt);
}

void StudioWindow::showMarks() {
  std::vector<ScreenMark> marks;
  std::vector<ScreenArrow> arrows;
  const auto rectOf = [](const Bounds& b) { return QRectF(b.x, b.y, b.w, b.h); };
  if (inspected && showsFocusMap && inspector->sources()) {
    const FocusMap map = focusMap(*inspected, *inspector->sources());
    for (const FocusStop& stop : map.stops)
      marks.push_back({rectOf(stop.bounds), stop.reach == FocusReach::arrows ? look().accent : look().error,
                       stop.reach != FocusReach::arrows});
    for (const DeadLink& link : map.deadLinks)
      for (const FocusStop& stop : map.stops)
        if (stop.id == link.from) marks.push_back({rectOf(stop.bounds), look().error, false});
    for (const FocusArrow& arrow : map.arrows)
      if (arrow.state == ArrowState::followed)
        arrows.push_back({QPointF(arrow.tail.x, arrow.tail.y), QPointF(arrow.head.x, arrow.head.y), look().accent});
  }
  if (const auto row = inspected ? inspector->chosen() : std::nullopt)
    marks.push_back({rectOf(row->bounds), QColor("#F2994A"), false});
  screen->setMarks(std::move(marks), std::move(arrows));
}

// What keeps the page from being opened; or else what went wrong in its scripts.
void StudioWindow::showErrors() {
  std::vector<KitMessage> messages = driver.session().errors();
  PageRun* run = driver.session().run();
  shownComplaints = run ? run->complaints().size() : 0;
  if (messages.empty() && run) messages = scriptErrors(run->complaintsWithPlaces());
  errors->setMessages(messages);
}

void StudioWindow::showPointed(std::optional<QPoint> pixel) {
  pointedAt = pixel;
  PageRun* run = driver.session().run();
  if (!run || driver.isBusy()) return loupe->point(nullptr, std::nullopt, {});
  loupe->point(run->player().window().data(), pixel, pixel ? storedPixel(run->engine(), *pixel) : QString());
}

void StudioWindow::setZoom(int factor) {
  screen->setZoom(factor);
  zoomText->setText(QString("%1\u00d7").arg(screen->zoom()));
}

void StudioWindow::fitZoom() {
  int factor = 1;
  const QSize room = surround->viewport()->size();
  for (setZoom(factor); factor <= ScreenView::kMostZoom; ++factor) {
    setZoom(factor);
    if (screen->width() > room.width() || screen->height() > room.height()) break;
  }
  setZoom(factor - 1);
}

void StudioWindow::openPlace(const KitMessage& message) {
  if (message.file.empty()) return;
  EditorChoice choice{qEnvironmentVariable("VISUAL", qEnvironmentVariable("EDITOR")).toStdString(), {}};
  for (const char* program : {"code", "codium", "xdg-open"})
    if (!QStandardPaths::findExecutable(program).isEmpty()) choice.programs.push_back(program);
  const auto command = editorCommand(choice, std::filesystem::absolute(message.file).string(), message.line);
  QStringList arguments;
  if (command)
    for (size_t i = 1; i < command->size(); ++i) arguments.push_back(QString::fromStdString((*command)[i]));
  if (!command || !QProcess::startDetached(QString::fromStdString(command->front()), arguments))
    state->setText("There is no editor to open it with; set VISUAL to yours");
}

void StudioWindow::savePicture() {
  PageRun* run = driver.session().run();
  if (!run) return;
  // The pixels of the moment, not those when the dialog ends.
  const std::vector<uint32_t> pixels = run->player().window();
  const QString name = QString::fromStdString(std::filesystem::path(page).stem().string()) + ".png";
  const QString file = QFileDialog::getSaveFileName(this, "Save the picture", name, "Pictures (*.png)");
  if (file.isEmpty()) return;
  try {
    writePng(file.toStdString(), ScreenView::kWidth, ScreenView::kHeight, pixels);
  } catch (const KitError& e) {
    QMessageBox::warning(this, "The picture can't be saved", QString::fromStdString(e.what()));
  }
}

void StudioWindow::setRecording(bool on) {
  if (on) return driver.restart();
  const QString name = QString::fromStdString(std::filesystem::path(page).stem().string()) + ".recording.yaml";
  const QString file = QFileDialog::getSaveFileName(
      this, "Save what was done", name, "Recordings (*.yaml);;Tests of the page (*.test.yaml);;Films (*.gif *.png)");
  if (file.isEmpty()) return;
  try {
    saveRecording(driver.session().recording(), page, file.toStdString());
  } catch (const KitError& e) {
    QMessageBox::warning(this, "It can't be saved", QString::fromStdString(e.what()));
  }
}

// ---- editing

void StudioWindow::setValue(const std::string& attribute, const std::string& value) {
  const auto chosen = inspector->chosen();
  if (!chosen || driver.isBusy()) return;
  const auto source = inspector->sources()->of(chosen->id);
  if (!source) return state->setText("Its source isn't known, so it can't be edited");
  if (source->sharedBy > 1) {
    const QString question =
        QString("%1 widgets are made of these lines, and all of them will change.").arg(source->sharedBy);
    if (QMessageBox::question(this, "Edit", question, QMessageBox::Ok | QMessageBox::Cancel) != QMessageBox::Ok) return;
  }
  edit([&] { edits.setAttribute(*source, attribute, value); });
}

// The page is built with what the change makes of its sources, and goes on as after a save.
void StudioWindow::edit(const std::function<void()>& change) {
  try {
    change();
  } catch (const KitError& e) {
    return state->setText(QString::fromStdString(e.what()));
  }
  driver.reload();
}

bool StudioWindow::saveEdits() {
  try {
    edits.save();
  } catch (const KitError& e) {
    QMessageBox::warning(this, "The source can't be saved", QString::fromStdString(e.what()));
    return false;
  }
  showEdits();
  return true;
}

void StudioWindow::showEdits() {
  const bool isEdited = !edits.unsavedFiles().empty();
  setWindowModified(isEdited);
  saveAction->setEnabled(isEdited);
  const auto show = [](QAction* action, const QString& what, const std::string& name) {
    action->setEnabled(!name.empty());
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(QString("%1%2 (%3)").arg(what, name.empty() ? "" : ": " + QString::fromStdString(name), keys));
  };
  show(undoAction, "Undo", edits.undoName());
  show(redoAction, "Redo", edits.redoName());
}

// Whether what isn't saved has been saved, or may be given up.
bool StudioWindow::mayDropEdits() {
  if (edits.unsavedFiles().empty()) return true;
  const auto answer = QMessageBox::question(this, "Edited", "The source has been edited here and isn't saved.",
                                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
  if (answer == QMessageBox::Save) return saveEdits();
  return answer == QMessageBox::Discard;
}

void StudioWindow::closeEvent(QCloseEvent* event) { mayDropEdits() ? event->accept() : event->ignore(); }

void StudioWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && errors) showErrors();
  QMainWindow::changeEvent(event);
}
