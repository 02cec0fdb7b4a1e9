#include "studio/window/studiowindow.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "engine/inspect.h"
#include "engine/screen/display.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/run/scriptwords.h"
#include "kit/run/valuetree.h"
#include "studio/editor/openplace.h"
#include "studio/editor/scripterrors.h"
#include "studio/record/saverecording.h"
#include "studio/timeline/runwatch.h"
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

// As wide as there is room, and as high as it wants to be.
QScrollArea* scrolled(QWidget* widget) {
  auto* area = new QScrollArea;
  area->setWidget(widget);
  area->setWidgetResizable(true);
  area->setFrameStyle(0);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  return area;
}

}  // namespace

StudioWindow::StudioWindow(const std::string& p, FileReach reach) : page(p), driver(p, reach) {
  setWindowTitle(QString::fromStdString(std::filesystem::path(page).filename().string()) + "[*] \u2013 Vistrel Studio");
  buildViews();
  buildTools();
  followDebugger();
  driver.prepare = [this](PageRun& run) {
    run.watch(std::make_unique<RunWatch>(run, timeline, memory));
    debugDesk.begin(run);
  };
  driver.edited = [this](const std::string& file) { return edits.unsavedText(file); };
  driver.changed = [this] {
    debugDesk.followNow();
    showPage();
  };
  driver.opened = [this] {
    debugDesk.keepOnly(driver.session().run());
    debugDesk.setSilent(false);
    debugger->refresh();
    edits.lookAtDisk();
    showEdits();
    showErrors();
    showPage();
    if (driver.session().errors().empty())
      for (const KitMessage& warning : driver.session().warnings()) console->warn(warning);
    state->setText(driver.session().errors().empty()
                       ? QString("Opened in %1 ms").arg(driver.lastReload(), 0, 'f', driver.lastReload() < 10 ? 1 : 0)
                   : driver.session().run() ? QString("Not opened: the page before stays")
                                            : QString("Not opened"));
  };
  driver.busy = [this] { stopAction->setEnabled(driver.isBusy()); };
  screen->setFocus();  // so that keys go to the page from the start
}

// While the page stands, what asks for the engine waits, as while a script runs.
void StudioWindow::followDebugger() {
  driver.opening = [this](bool anew) { debugDesk.setSilent(!anew); };
  driver.interrupted = [this] { debugger->goOn(BobResume::run); };
  debugger->edited = [this](const std::string& file) { return edits.unsavedText(file); };
  debugger->wanted = [this] { tabs->setCurrentWidget(debugger); };
  debugDesk.logged = [this](const std::string& line) {
    console->print(QString::fromStdString(line) + "\n");
    if (editor) editor->print(line);
  };
  debugDesk.isBusy = [this] { return driver.isBusy(); };
  debugDesk.stopped = [this](const BobStop& stop) { return stand(stop); };
}

BobResume StudioWindow::stand(const BobStop& stop) {
  const bool couldStop = stopAction->isEnabled();
  stopAction->setEnabled(true);
  if (editor) editor->stand(stop);
  const BobResume how = debugger->stand(stop);
  if (editor) editor->goesOn();
  stopAction->setEnabled(couldStop);
  return how;
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
  debugger = new DebuggerView(debugDesk);
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
  sideColumn->addWidget(remote, 0, Qt::AlignHCenter);
  sideColumn->addWidget(loupe, 0, Qt::AlignHCenter);
  sideColumn->addStretch(1);
  QScrollArea* sideScroll = scrolled(side);
  sideScroll->setFixedWidth(remote->sizeHint().width() + 2 * (kGap + 2));

  auto* rows = new QSplitter(Qt::Vertical);
  rows->addWidget(middle);
  rows->addWidget(console);
  rows->setStretchFactor(0, 1);
  rows->setSizes({500, 190});
  rows->setHandleWidth(1);

  auto* columns = new QSplitter(Qt::Horizontal);
  columns->addWidget(sideScroll);
  columns->addWidget(rows);
  tabs = new QTabWidget;
  tabs->setDocumentMode(true);
  tabs->addTab(inspector, "Inspector");
  tabs->addTab(timelineView, "Timeline");
  tabs->addTab(scrolled(memoryView), "Memory");
  tabs->addTab(debugger, "Debugger");
  QObject::connect(tabs, &QTabWidget::currentChanged, this, [this] {
    inspector->refresh();
    timelineView->refresh();
    debugger->refresh();
  });
  columns->addWidget(tabs);
  columns->setStretchFactor(1, 1);
  columns->setSizes({224, 756, 420});
  columns->setHandleWidth(1);
  columns->setChildrenCollapsible(false);
  setCentralWidget(columns);

  state = new QLabel;
  statusBar()->addWidget(state, 1);
  statusBar()->setSizeGripEnabled(false);

  screen->pressed = [this](const QString& name) { press(name); };
  screen->pointed = [this](std::optional<QPoint> pixel) { showPointed(pixel); };
  screen->zoomed = [this](int steps) { setZoom(screen->zoom() + steps); };
  remote->pressed = [this](const QString& name) { press(name); };
  console->entered = [this](const QString& line) { enter(line); };
  console->placeClicked = [this](const KitMessage& place) { openPlace(place); };
  console->wordsWanted = [this](bool isAfterDot) { return wordsToGoOnWith(isAfterDot); };
  console->left = [this] { screen->setFocus(); };
  screen->picked = [this](QPoint at) {
    if (!inspected || driver.isBusy()) return;
    const std::vector<WidgetId> there = widgetsAt(inspected->engine(), at.x(), at.y());
    if (!there.empty()) inspector->choose(there.front());
    pickAction->setChecked(false);
    screen->setPicking(false);
  };
  screen->dragged = [this](const Bounds& place, bool isOver) { drag(place, isOver); };
  screen->nudged = [this](const Bounds& place) { nudge(place); };
  inspector->choiceChanged = [this] { showMarks(); };
  inspector->placeClicked = [this](const YamlPlace& place) {
    openPlace({place.file ? *place.file : std::string(), place.line, ""});
  };
  inspector->valueEdited = [this](const std::string& attribute, const std::string& value) {
    setValue(attribute, value);
  };
  inspector->valueRemoved = [this](const std::string& attribute) { setValue(attribute, std::nullopt); };
  inspector->editRefused = [this](const std::string& sentence) { state->setText(QString::fromStdString(sentence)); };
  errors->clicked = [this](const KitMessage& message) { openPlace(message); };
}

// Also while a script runs, or stands, and so in the middle of itself: a timer that calls directly would wait for that.
void StudioWindow::callOften(std::function<void()> work) {
  constexpr int kBetween = 15;  // milliseconds
  auto* timer = new QTimer(this);
  QObject::connect(timer, &QTimer::timeout, this, std::move(work), Qt::QueuedConnection);
  timer->start(kBetween);
}

void StudioWindow::listenAt(const std::string& path) {
  protocol = std::make_unique<ControlProtocol>(driver.session());
  protocol->stop = [this] { driver.stop(); };
  control = std::make_unique<ControlSocket>(path, [this](std::string_view line) {
    std::string answer;
    driver.obey([&] { answer = protocol->answer(line); });
    return answer;
  });
  callOften([this] {
    if (!driver.isBusy()) return control->step();
    control->stepAmidst([this](std::string_view line) { return protocol->answerAmidst(line); });
  });
}

void StudioWindow::debugAt(const std::string& path) {
  editor = std::make_unique<AttachedEditor>(path, debugDesk);
  editor->wanted = [this](const PageAction& action) { driver.obey([&] { driver.session().act(action); }); };
  editor->wantsToGoOn = [this](BobResume how) { debugger->goOn(how); };
  editor->breakpointsChanged = [this] { debugger->showMarks(); };
  callOften([this] { editor->step(driver.isBusy()); });
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
  } else if (inspector->isVisible()) {
    inspector->refresh();
  }
  timelineView->refresh();
  memoryView->update();
  showMarks();
  if (run->complaints().size() != shownComplaints) showErrors();
  console->setLog(driver.session().openings(), run->log(), run->complaints(),
                  [run](std::string_view complaint) { return run->player().withPlaces(complaint); });
  if (editor && editor->isThere()) editor->showLog(run->logWithPlaces());
  showReplay();
  if (pointedAt) showPointed(pointedAt);
}

// How far what is played has come.
void StudioWindow::showReplay() {
  const Replay& replay = driver.replay();
  if (replay.isOver() && !wasReplaying) return;
  wasReplaying = !replay.isOver();
  state->setText(wasReplaying ? QString("Playing: %1 of %2").arg(replay.position()).arg(replay.length())
                              : QString("Played"));
}

// A question mark asks what lies in a value; anything else is a statement.
void StudioWindow::enter(const QString& line) {
  if (debugger->isStanding()) {
    QString answer;
    const bool isValue = debugger->evaluate(line, &answer);
    return console->print((isValue ? "--> " : "Error: ") + answer + "\n");
  }
  if (!line.startsWith('?')) return driver.type(line.toLatin1().toStdString());
  PageRun* run = driver.session().run();
  if (!run || driver.isBusy()) return;
  std::string tree;
  driver.obey([&] { tree = valueTree(*run, line.mid(1).toLatin1().toStdString()); });
  console->print(QString::fromLatin1(tree.data(), qsizetype(tree.size())));
}

QStringList StudioWindow::wordsToGoOnWith(bool isAfterDot) {
  QStringList words;
  PageRun* run = driver.session().run();
  if (!run || driver.isBusy()) return words;
  const ScriptWords known = scriptWords(*run);
  for (const std::string& word : isAfterDot ? known.selectors : known.globals) words << QString::fromStdString(word);
  return words;
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

// What is in the middle stays there.
void StudioWindow::setZoom(int factor) {
  const QPoint middle = surround->viewport()->rect().center();
  const QPointF kept = screen->mapFrom(surround->viewport(), middle);
  const QSizeF before = screen->size();
  screen->setZoom(factor);
  zoomText->setText(QString("%1\u00d7").arg(screen->zoom()));
  const auto keep = [](QScrollBar* bar, double at, double size, int sizeNow, int middle) {
    bar->setValue(int(std::lround(at / size * sizeNow)) - middle);
  };
  keep(surround->horizontalScrollBar(), kept.x(), before.width(), screen->width(), middle.x());
  keep(surround->verticalScrollBar(), kept.y(), before.height(), screen->height(), middle.y());
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
  const auto isThere = [](const char* program) { return !QStandardPaths::findExecutable(program).isEmpty(); };
  std::copy_if(std::begin(kEditors), std::end(kEditors), std::back_inserter(choice.programs), isThere);
  const auto terminal = std::find_if(std::begin(kTerminals), std::end(kTerminals), isThere);
  if (terminal != std::end(kTerminals)) choice.terminal = *terminal;
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
  const QString file = QFileDialog::getSaveFileName(this, "Save the picture", nameWith(".png"), "Pictures (*.png)");
  if (file.isEmpty()) return;
  tryTo("The picture can't be saved", [&] {
    writePng(file.toStdString(), ScreenView::kWidth, ScreenView::kHeight, pixels);
    state->setText("Saved as " + file);
  });
}

QString StudioWindow::nameWith(const char* extension) const {
  return QString::fromStdString(std::filesystem::path(page).stem().string()) + extension;
}

// Nothing when the work was done; a message that says why it wasn't.
void StudioWindow::tryTo(const QString& failed, const std::function<void()>& work) {
  try {
    work();
  } catch (const KitError& e) {
    QMessageBox::warning(this, failed, QString::fromStdString(e.what()));
  }
}

void StudioWindow::setRecording(bool on) {
  if (on) return driver.restart();
  const Recording recorded = driver.session().recording();
  const QString file =
      QFileDialog::getSaveFileName(this, "Save what was done", nameWith(".recording.yaml"),
                                   "Recordings (*.yaml);;Tests of the page (*.test.yaml);;Films (*.gif *.png)");
  if (file.isEmpty()) return;
  tryTo("It can't be saved", [&] {
    saveRecording(recorded, page, file.toStdString());
    state->setText("Saved as " + file);
  });
}

void StudioWindow::openRecording() {
  const QString file = QFileDialog::getOpenFileName(this, "Play a recording", {}, "Recordings (*.yaml)");
  if (file.isEmpty()) return;
  tryTo("It can't be played", [&] { driver.play(readRecording(file.toStdString()).actions); });
}

void StudioWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && errors) showErrors();
  QMainWindow::changeEvent(event);
}
