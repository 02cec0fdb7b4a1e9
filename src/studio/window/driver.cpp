#include "studio/window/driver.h"

#include <QCoreApplication>
#include <algorithm>
#include <utility>

namespace {

constexpr int kTick = 15;           // milliseconds
constexpr qint64 kServeAfter = 50;  // milliseconds of running on, until the windows are served
constexpr double kMostOwed = 250;   // of the page; what a slow machine can't do is not made up for

}  // namespace

PageDriver::PageDriver(const std::string& p, FileReach reach)
    : page(p, sessionOptions(reach)), watcher([this] { watchSaves(); }) {
  timer.setTimerType(Qt::PreciseTimer);
  timer.setInterval(kTick);
  QObject::connect(&timer, &QTimer::timeout, &context, [this] { letTimePass(); });
}

SessionOptions PageDriver::sessionOptions(FileReach reach) {
  SessionOptions options;
  options.reach = reach;
  options.limitMemory = kUsualMemory;  // what the windows keep of the page among it
  options.lines = true;
  options.prepare = [this](PageRun& run) {
    player = &run.player();
    player->whileBusy = [this] { serveWindows(); };
    if (prepare) prepare(run);
  };
  options.edited = [this](const std::string& file) { return edited ? edited(file) : nullptr; };
  return options;
}

void PageDriver::serveWindows() {
  if (sinceServed.elapsed() < kServeAfter) return;
  if (!wasLong && busy) {
    wasLong = true;
    busy();
  }
  QCoreApplication::processEvents();
  sinceServed.start();
}

PageDriver::~PageDriver() {
  ends = true;
  watch.interrupt();
  watcher.join();
}

// All that reaches the engine goes through here.
void PageDriver::run(const std::function<void()>& work) {
  if (running) return;
  running = true;
  stoppedBy.clear();
  sinceServed.start();
  work();
  running = false;
  if (wasLong) {
    wasLong = false;
    if (busy) busy();
  }
  if (PageRun* now = page.run()) {
    player = &now->player();
    if (!now->stopped().empty()) {
      stoppedBy = now->stopped();
      player->goOn();
    }
  }
  if (const auto anew = std::exchange(wantsOpening, std::nullopt)) return open(*anew);
  if (changed) changed();
}

void PageDriver::restart() {
  played = {};
  open(true);
}

void PageDriver::play(std::vector<PageAction> actions) {
  if (running) return;
  restart();
  played = Replay(std::move(actions));
}

void PageDriver::reload() { open(!keepsState); }

void PageDriver::open(bool anew) {
  if (running) {
    wantsOpening = anew;
    return stop();
  }
  if (opening) opening(anew);
  QElapsedTimer time;
  time.start();
  readSince = FileWatch::Time::clock::now();
  run([&] { anew ? page.restart() : page.reload(); });
  watchFiles();
  reloadMilliseconds = double(time.nsecsElapsed()) / 1e6;
  owed = 0;
  sinceTick.start();
  if (!paused) timer.start();
  if (opened) opened();
}

void PageDriver::key(const std::string& name) {
  played = {};
  run([&] { page.act({PageAction::key, name}); });
}

void PageDriver::type(const std::string& line) {
  played = {};
  run([&] { page.act({PageAction::eval, line}); });
}

void PageDriver::setPaused(bool on) {
  paused = on;
  owed = 0;
  sinceTick.start();
  paused ? timer.stop() : timer.start();
}

void PageDriver::step() {
  run([&] { pass(1); });
}

void PageDriver::pass(uint32_t milliseconds) {
  int64_t left = milliseconds;
  while (const auto action = played.next(left)) page.act(*action);
  if (left > 0) page.pass(uint32_t(left));
}

void PageDriver::obey(const std::function<void()>& work) {
  run(work);
  watchFiles();
}

void PageDriver::stop() {
  if (!running) return;
  player->interrupt();
  if (interrupted) interrupted();
}

void PageDriver::letTimePass() {
  if (running) return void(sinceTick.start());
  owed = std::min(owed + speed * double(sinceTick.nsecsElapsed()) / 1e6, kMostOwed * std::max(speed, 1.0));
  sinceTick.start();
  const auto whole = uint32_t(owed);
  if (whole == 0) return;
  owed -= whole;
  run([&] { pass(whole); });
}

void PageDriver::watchFiles() {
  const std::lock_guard lock(mutex);
  toWatch.emplace(page.dependencies(), readSince);
  watch.interrupt();
}

void PageDriver::watchSaves() {
  constexpr std::chrono::milliseconds kWait{1000};
  while (!ends) {
    {
      const std::lock_guard lock(mutex);
      if (toWatch) watch.watch(toWatch->first, toWatch->second);
      toWatch.reset();
    }
    if (!watch.wait(kWait).empty())
      QMetaObject::invokeMethod(
          &context, [this] { reload(); }, Qt::QueuedConnection);
  }
}
