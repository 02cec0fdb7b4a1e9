// An observer that writes down what it hears, a line each, with widgets by their names.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/inspect.h"

class Recorder : public EngineObserver {
 public:
  bool draws = false;  // drawings, redraw costs and steps are wanted, too
  std::map<WidgetId, std::string> names;
  std::vector<WidgetId> gone;

  // What was heard since the last look.
  std::vector<std::string> heard() { return std::exchange(lines, {}); }

  std::string nameOf(WidgetId id) const {
    const auto found = names.find(id);
    return id == 0 ? "-" : found == names.end() ? "?" : found->second;
  }

  void stepBegun(uint32_t time) override { drawing("step " + std::to_string(time)); }
  void stepEnded(uint32_t time, const DrawCost& cost) override {
    drawing("step end " + std::to_string(time) + " filled " + std::to_string(cost.pixelsFilled) + " copied " +
            std::to_string(cost.pixelsCopied) + " glyphs " + std::to_string(cost.glyphs) + " redraws " +
            std::to_string(cost.redraws));
  }
  void pageLoading(WidgetId frame, std::string_view page) override {
    say("loading " + nameOf(frame) + " " + file(page));
  }
  void pageLoaded(WidgetId frame, std::string_view page, bool loaded) override {
    say((loaded ? "loaded " : "refused ") + nameOf(frame) + " " + file(page));
  }
  void pageUnloaded(WidgetId frame, std::string_view page) override {
    say("unloaded " + nameOf(frame) + " " + file(page));
  }
  void widgetMade(const WidgetMade& made) override {
    names[made.id] = made.name.empty() ? "root of " + nameOf(made.frame) : std::string(made.name);
    say("made " + nameOf(made.id) + " in " + nameOf(made.parent) + (made.type.empty() ? "" : " as ") +
        std::string(made.type));
  }
  void widgetGone(WidgetId id) override {
    gone.push_back(id);
    say("gone " + nameOf(id));
  }
  void focusMoved(WidgetId frame, WidgetId from, WidgetId to) override {
    say("focus of " + nameOf(frame) + " " + nameOf(from) + " > " + nameOf(to));
  }
  void eventBegun(uint32_t code, uint32_t data, bool posted) override {
    say((posted ? "post " : "send ") + hex(code) + " " + hex(data));
  }
  void eventDelivered(const EventDelivery& event) override {
    std::string line = "delivered " + hex(event.code) + ":";
    for (const WidgetId id : event.seen) line += " " + nameOf(id);
    say(line + (event.byHandler ? ", handled at " : ", consumed by ") + nameOf(event.consumer));
  }
  void timerFired(const TimerIdentity& timer) override {
    say(timer.kind == TimerKind::timeout  ? "timeout of " + nameOf(timer.widget)
        : timer.kind == TimerKind::script ? "timer of a script"
                                          : "timer");
  }
  void scriptEntered(const ScriptRun& run) override { say("enter " + wordsOf(run)); }
  void scriptLeft(const ScriptRun& run, bool failed) override { say((failed ? "fail " : "leave ") + wordsOf(run)); }
  void drawn(const Drawing& d) override {
    drawing("draw " + nameOf(d.widget) + " " + std::to_string(d.rect.x) + " " + std::to_string(d.rect.y) + " " +
            std::to_string(d.rect.w) + " " + std::to_string(d.rect.h));
  }
  void swapped() override { drawing("swap"); }
  void imageLoaded(std::string_view name, uint32_t w, uint32_t h, uint32_t bytes) override {
    say("image " + std::string(name) + " " + std::to_string(w) + "x" + std::to_string(h) + " " + std::to_string(bytes));
  }
  void imageRefused(std::string_view name, ImageRefusal why) override {
    say("image refused " + std::string(name) + " " + std::to_string(int(why)));
  }
  void imageThrownOut(std::string_view name, uint32_t bytes) override {
    say("image out " + std::string(name) + " " + std::to_string(bytes));
  }
  void fontOpened(std::string_view name, bool found) override {
    say((found ? "font " : "no font ") + std::string(name));
  }
  void glyphsCleared() override { say("glyphs cleared"); }
  void lineLogged(std::string_view line) override {
    if (!line.starts_with("[GC")) say("log " + std::string(line));
  }

 private:
  static std::string file(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }
  static std::string hex(uint32_t number) {
    char text[9];
    std::snprintf(text, sizeof text, "%x", unsigned(number));
    return text;
  }
  std::string wordsOf(const ScriptRun& run) const {
    constexpr const char* kKinds[] = {"hook", "file", "observer", "handler", "timer", "console"};
    return std::string(kKinds[int(run.kind)]) + " " + nameOf(run.target) + " " + run.hook +
           (run.event ? hex(run.event) : "") + " '" + run.name + "'";
  }
  void say(std::string line) { lines.push_back(std::move(line)); }
  void drawing(std::string line) {
    if (draws) say(std::move(line));
  }

  std::vector<std::string> lines;
};
