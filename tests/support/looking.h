// Looks at all that a running engine has to see, once or whenever something happens in it.
#pragma once

#include "engine/inspect.h"

// Of very large pages at so many of the widgets closely. Returns how much it has seen.
inline size_t lookAtAll(Engine& engine, size_t closely = 50) {
  const std::vector<WidgetView> widgets = inspectWidgets(engine);
  size_t seen = widgets.size();
  for (size_t i = 0; i < widgets.size() && i < closely; ++i) {
    const WidgetId id = widgets[i].id;
    seen += inspectAttributes(engine, id).size() + inspectLinks(engine, id).size() + whyNotSeen(engine, id).size();
  }
  return seen + widgetsAt(engine, 360, 240).size() + inspectFrames(engine).size() + inspectStyles(engine).size() +
         inspectFonts(engine).size() + inspectTimers(engine).size() + inspectImageCache(engine).entries.size() +
         inspectHeap(engine).collections + size_t(inspectGlyphCache(engine).strikes);
}

// Looks each time that it hears something, in the middle of scripts, loads and collections, too, or at every so many of
// those times.
class LookingObserver : public EngineObserver {
 public:
  explicit LookingObserver(Engine& e, size_t each = 1, size_t widgetsClosely = 50)
      : engine(e), every(each), closely(widgetsClosely) {
    engine.observer = this;
  }
  ~LookingObserver() override { engine.observer = nullptr; }

  void stepEnded(uint32_t, const DrawCost&) override { look(); }
  void pageLoaded(WidgetId, std::string_view, bool) override { look(); }
  void pageUnloaded(WidgetId, std::string_view) override { look(); }
  void widgetMade(const WidgetMade&) override { look(); }
  void widgetGone(WidgetId) override { look(); }
  void focusMoved(WidgetId, WidgetId, WidgetId) override { look(); }
  void eventDelivered(const EventDelivery&) override { look(); }
  void timerFired(const TimerIdentity&) override { look(); }
  void scriptEntered(const ScriptRun&) override { look(); }
  void scriptLeft(const ScriptRun&, bool) override { look(); }
  void imageThrownOut(std::string_view, uint32_t) override { look(); }
  void lineLogged(std::string_view) override { look(); }

  size_t seen = 0;

 private:
  void look() {
    if (heard++ % every == 0) seen += lookAtAll(engine, closely);
  }

  Engine& engine;
  const size_t every, closely;
  size_t heard = 0;
};
