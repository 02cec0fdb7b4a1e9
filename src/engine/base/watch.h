// How the parts of an engine report to its observer what happens. Each of these is one test of a null pointer when
// nobody looks:
//
//   if (const ObserverReport report; report) report->widgetGone(widget->id);
//
// Whatever could run a script asks observerListens first, which is the case while an observer hears something.
#pragma once

#include <exception>
#include <optional>

#include "engine/base/observer.h"

EngineObserver* currentObserver();  // of the engine that is current on this thread; null when nobody looks

inline EngineNotes& notesOf(EngineObserver& observer) { return observer.notes; }

inline bool observerListens() {
  EngineObserver* observer = currentObserver();
  return observer && notesOf(*observer).reporting;
}

// The observer for the length of a statement; none when nobody looks, or when it hears something already.
class ObserverReport {
 public:
  ObserverReport() : observer(currentObserver()) {
    if (!observer) return;
    if (notesOf(*observer).reporting) {
      observer = nullptr;
    } else {
      notesOf(*observer).reporting = true;
    }
  }
  ~ObserverReport() {
    if (observer) notesOf(*observer).reporting = false;
  }
  ObserverReport(const ObserverReport&) = delete;
  ObserverReport& operator=(const ObserverReport&) = delete;

  explicit operator bool() const { return observer != nullptr; }
  EngineObserver& operator*() const { return *observer; }
  EngineObserver* operator->() const { return observer; }

 private:
  EngineObserver* observer;
};

// Reports the end of something, which nothing may stop: an observer that has no memory left to take it in misses it.
template <class Report>
void reportEnd(Report&& tell) noexcept {
  const ObserverReport report;
  if (!report) return;
  try {
    tell(*report);
  } catch (const std::exception&) {
  }
}

// Where the cost is counted; null when nobody looks.
inline DrawCost* currentCost() {
  EngineObserver* observer = currentObserver();
  return observer ? &notesOf(*observer).cost : nullptr;
}

// A widget that is drawn from here to the end of the scope.
class DrawingWatch {
 public:
  explicit DrawingWatch(WidgetId widget) : observer(currentObserver()) {
    if (!observer) return;
    before = notesOf(*observer).drawing;
    notesOf(*observer).drawing = widget;
    ++notesOf(*observer).cost.redraws;
  }
  ~DrawingWatch() {
    if (observer) notesOf(*observer).drawing = before;
  }
  DrawingWatch(const DrawingWatch&) = delete;
  DrawingWatch& operator=(const DrawingWatch&) = delete;

 private:
  EngineObserver* observer;
  WidgetId before = 0;
};

// A script that runs until the end of the scope. `describe` returns its ScriptRun, and is called when somebody looks.
class ScriptWatch {
 public:
  template <class Describe>
  explicit ScriptWatch(Describe&& describe) {
    const ObserverReport report;
    if (!report) return;
    run = describe();
    report->scriptEntered(*run);
  }
  ~ScriptWatch() {
    if (run) reportEnd([this](EngineObserver& o) { o.scriptLeft(*run, failed); });
  }
  ScriptWatch(const ScriptWatch&) = delete;
  ScriptWatch& operator=(const ScriptWatch&) = delete;

  void ended(bool well) { failed = !well; }

 private:
  std::optional<ScriptRun> run;
  bool failed = false;
};

// For what only an engine that is watched does; the observer is not null.
void reportDrawing(EngineObserver& observer, const Bounds& rect);
void reportCharacter(EngineObserver& observer, char c);  // the line, at its end
