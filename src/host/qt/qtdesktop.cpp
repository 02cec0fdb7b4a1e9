#include "host/qt/qtdesktop.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QLayout>
#include <QMenuBar>
#include <algorithm>
#include <cstdlib>

#include "gfx/foundation/hsdebug.h"

namespace {

constexpr qint64 kBreathInterval = 50;  // milliseconds

QtDesktop* theDesktop = nullptr;  // for the halt function, which takes nothing

// Closing either window ends the program.
class Window : public QMainWindow {
 protected:
  void closeEvent(QCloseEvent* event) override {
    QMainWindow::closeEvent(event);
    QApplication::quit();
  }
};

}  // namespace

QtDesktop::QtDesktop() {
  theDesktop = this;
  hsSetHaltProc([] { theDesktop->halt(); });
  sinceStart.start();
  sinceStep.start();
  wakeUp.setSingleShot(true);
  wakeUp.setTimerType(Qt::PreciseTimer);
  QObject::connect(&wakeUp, &QTimer::timeout, [this] { stepEngine(); });
}

QtDesktop::~QtDesktop() { hsSetHaltProc(nullptr); }

bool QtDesktop::start() {
  if (!shell.start()) return false;
  schedule();
  return true;
}

EditControl* QtDesktop::createConsole(const std::string& title, int width, int height) {
  consoleWindow = std::make_unique<Window>();
  consoleWindow->setWindowTitle(QString::fromStdString(title));
  edit = new ConsoleEdit(consoleWindow.get());
  edit->onEnter = [this](const std::function<void()>& breakLine) {
    if (stopped) return breakLine();
    shell.consoleEnter(breakLine);
    stepEngine();
  };
  consoleWindow->setCentralWidget(edit);
  consoleWindow->resize(width, height);
  consoleWindow->show();
  return edit;
}

void QtDesktop::createScreen(const std::string& title, int, int) {
  screenWindow = std::make_unique<Window>();
  screenWindow->setWindowTitle(QString::fromStdString(title));
  screen = new ScreenWidget(shell, [this](const std::function<void()>& message) {
    if (stopped) return;
    message();
    stepEngine();
  });
  QMenu* menu = screenWindow->menuBar()->addMenu(kFileMenuTitle);
  for (const MenuItem& item : kFileMenu) {
    if (!item.text) {
      menu->addSeparator();
      continue;
    }
    QAction* action = menu->addAction(item.text);
    QObject::connect(action, &QAction::triggered, [this, command = item.command] {
      if (stopped && command != Command::exit) return;
      shell.command(command);
      stepEngine();
    });
  }
  screenWindow->setCentralWidget(screen);
  screenWindow->layout()->setSizeConstraint(QLayout::SetFixedSize);
  screenWindow->show();
}

void QtDesktop::invalidate(const DesktopRect& rect) { screen->update(rect.x, rect.y, rect.w, rect.h); }

std::optional<std::string> QtDesktop::chooseFile(const std::string& title, const std::string& filterName,
                                                 const std::string& pattern) {
  stopped = true;
  const QString filter = QString::fromStdString(filterName + " (" + pattern + ")");
  const QString folder = shell.folder.empty() ? QDir::currentPath() : QString::fromStdString(shell.folder.string());
  const QString path = QFileDialog::getOpenFileName(screenWindow.get(), QString::fromStdString(title), folder, filter);
  stopped = false;
  if (path.isEmpty()) return std::nullopt;
  return QDir::toNativeSeparators(path).toStdString();
}

bool QtDesktop::breathe() {
  if (stopped || sinceStep.elapsed() < kBreathInterval) return true;
  stopped = true;
  QApplication::processEvents();
  stopped = false;
  sinceStep.start();
  if (!consoleWindow->isVisible() || (screenWindow && !screenWindow->isVisible())) std::_Exit(0);
  return true;
}

void QtDesktop::quit() { QApplication::quit(); }

void QtDesktop::halt() {
  stopped = true;
  if (*hsReportText() != '\0') shell.console->write(std::string(hsReportText()) + "\n");
  QEventLoop().exec();
  std::_Exit(0);
}

void QtDesktop::stepEngine() {
  if (stopped) return;
  sinceStep.start();
  shell.step();
  schedule();
}

void QtDesktop::schedule() {
  if (shell.busy()) {
    wakeUp.start(0);
  } else if (const auto due = shell.nextTimer()) {
    const uint32_t now = milliseconds();
    wakeUp.start(*due <= now ? 0 : int(std::min<uint32_t>(*due - now, INT32_MAX)));
  } else {
    wakeUp.stop();
  }
}
