// Lets a session live on a desktop: time passes as on the wall or as somebody says, saves are seen, and a page that
// runs on and on leaves the windows alive.
//
// While the engine runs, windows are served but cannot reach it: what they ask for then is dropped, but a save and a
// stop, which end what runs.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "kit/watch/filewatch.h"
#include "studio/record/replay.h"
#include "studio/session/session.h"

class PageDriver {
 public:
  PageDriver(const std::string& page, FileReach reach);
  ~PageDriver();
  PageDriver(const PageDriver&) = delete;
  PageDriver& operator=(const PageDriver&) = delete;

  void restart();
  void reload();
  void key(const std::string& name);
  void type(const std::string& line);

  // Starts afresh and does all that as time passes, until it is over or somebody presses a key.
  void play(std::vector<PageAction> actions);
  const Replay& replay() const { return played; }

  void setPaused(bool on);
  bool isPaused() const { return paused; }
  void step();  // one millisecond, also while paused
  void setSpeed(double factor) { speed = factor; }
  void setKeepsState(bool on) { keepsState = on; }
  void obey(const std::function<void()>& work);  // that uses the session, for somebody else
  void stop();                                   // ends a script that runs on and on
  bool isBusy() const { return running; }
  const std::string& stopped() const { return stoppedBy; }  // what the last activity was ended by; empty if it wasn't

  Session& session() { return page; }
  double lastReload() const { return reloadMilliseconds; }  // from the save, or the command, to the new pixels

  std::function<void(PageRun&)> prepare;                              // each new run, before it loads anything
  std::function<const std::string*(const std::string& file)> edited;  // as SessionOptions::edited
  std::function<void(bool anew)> opening;                             // a load begins: afresh, or with what was done
  std::function<void()> interrupted;                                  // what runs is to end
  std::function<void()> changed;                                      // the page may look otherwise now
  std::function<void()> opened;                                       // a load has ended, well or not
  std::function<void()> busy;                                         // begun or ended to run for long

 private:
  SessionOptions sessionOptions(FileReach reach);
  void serveWindows();
  void run(const std::function<void()>& work);
  void open(bool anew);
  void letTimePass();
  void pass(uint32_t milliseconds);
  void watchFiles();
  void watchSaves();  // the thread

  RunDesktop* player = nullptr;  // that runs, or ran last
  std::string stoppedBy;
  Session page;
  QObject context;  // that calls from the other thread go to
  QTimer timer;
  QElapsedTimer sinceTick, sinceServed;
  double speed = 1, owed = 0;  // milliseconds of the page that are due
  double reloadMilliseconds = 0;
  Replay played;
  bool paused = false, running = false, keepsState = true, wasLong = false;
  std::optional<bool> wantsOpening;  // when what runs has ended: afresh or not

  FileWatch::Time readSince;
  FileWatch watch;
  std::mutex mutex;
  std::optional<std::pair<std::vector<std::filesystem::path>, FileWatch::Time>> toWatch;  // for the thread to take
  std::atomic<bool> ends = false;
  std::thread watcher;
};
