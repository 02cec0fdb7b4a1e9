// Watches one run of a page and writes what it hears into the timeline and the memory meter.
//
// Each run has its own, since numbers of widgets mean something in one engine only; the models outlive the runs:
//
//   options.prepare = [&](PageRun& run) { run.watch(std::make_unique<RunWatch>(run, timeline, memory)); };
#pragma once

#include <unordered_map>

#include "kit/run/pagerun.h"
#include "studio/memory/memorymeter.h"
#include "studio/timeline/timeline.h"

class RunWatch : public EngineObserver {
 public:
  RunWatch(PageRun& run, Timeline& timeline, MemoryMeter& memory);

  void stepBegun(uint32_t time) override;
  void stepEnded(uint32_t time, const DrawCost&) override;
  void pageLoading(WidgetId frame, std::string_view name) override;
  void pageLoaded(WidgetId frame, std::string_view name, bool loaded) override;
  void pageUnloaded(WidgetId frame, std::string_view name) override;
  void widgetMade(const WidgetMade& made) override;
  void widgetGone(WidgetId id) override;
  void focusMoved(WidgetId frame, WidgetId from, WidgetId to) override;
  void eventBegun(uint32_t code, uint32_t data, bool posted) override;
  void eventDelivered(const EventDelivery& event) override;
  void timerFired(const TimerIdentity& timer) override;
  void scriptEntered(const ScriptRun& script) override;
  void scriptLeft(const ScriptRun& script, bool failed) override;
  void drawn(const Drawing& drawing) override;
  void swapped() override;
  void imageLoaded(std::string_view name, uint32_t width, uint32_t height, uint32_t bytes) override;
  void imageRefused(std::string_view name, ImageRefusal why) override;
  void imageThrownOut(std::string_view name, uint32_t bytes) override;
  void fontOpened(std::string_view file, bool found) override;
  void glyphsCleared() override;
  void lineLogged(std::string_view line) override;

 private:
  // Something that has begun and not ended.
  struct Open {
    uint64_t row;
    DrawCost before;
  };

  void measureScript();
  uint64_t add(TimelineKind kind, std::string text, const DrawCost& cost = {});
  void begin(TimelineKind kind, std::string text);
  void end(std::string text);
  std::string nameOf(WidgetId id) const;
  std::string wordsOf(const ScriptRun& script) const;

  PageRun& run;
  Timeline& timeline;
  MemoryMeter& memory;
  uint32_t opening = 0;     // 0 until something is heard
  bool hasStepped = false;  // only what does is measured: an opening that fails leaves the page before, and its memory
  std::vector<Open> open;   // the innermost last
  std::unordered_map<WidgetId, std::string> names;
  uint64_t errorRow = 0;  // the last line of the log that looks like a script's error; 0 for none
  DrawCost atSwap;
};
