// What an engine tells whoever watches it.
//
// An observer derives from EngineObserver, overrides what it wants to hear, and is hung on `Engine::observer` between
// two calls of the engine. It gets values alone: numbers that name widgets, texts that hold until the function returns.
//
// What surprises: while an observer hears something, the engine takes nothing in. Steps, events, loads and scripts do
// nothing and answer 0, so a page never behaves differently for being watched. The views of engine/inspect.h may be
// taken at any time.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/base/bounds.h"

// A widget of an engine, or a target that a script made; 0 for none. A number is never used again.
using WidgetId = uint64_t;

struct WidgetMade {
  WidgetId id;
  WidgetId parent;        // the widget that it lies in, or the frame; 0 for the top frame
  WidgetId frame;         // 0 for the top frame
  std::string_view type;  // as the page says; empty for none
  std::string_view name;  // empty for none
  Bounds bounds;          // on the screen
};

// The delivery of an event that the host posted, or that a script sent to one widget.
struct EventDelivery {
  uint32_t code, data, data2;
  bool posted;
  std::span<const WidgetId>
      seen;           // targets in the order in which they were asked; a frame twice if it had the last word
  WidgetId consumer;  // 0 when nobody wanted it
  bool byHandler;     // a script's OnEvent consumed it in place of the consumer itself
};

enum class ScriptKind { hook, file, observer, handler, timer, console };

struct ScriptRun {
  ScriptKind kind;
  WidgetId target;   // the widget or frame whose hook it is, the frame of a file or a console line; 0 for a timer
  std::string hook;  // attribute of a hook, such as onClick
  uint32_t event;    // code that an observer or handler is for
  std::string name;  // of the code, as a traceback has it; the file; the line
};

enum class TimerKind { timeout, script, glyphs, other };

struct TimerIdentity {
  TimerKind kind = TimerKind::other;
  WidgetId widget = 0;  // that a timeout hides
};

// What work costs on the player.
struct DrawCost {
  uint64_t pixelsFilled = 0, pixelsCopied = 0;  // on the screen
  uint64_t glyphs = 0;                          // drawn, spaces included
  uint64_t bytesRead = 0;                       // from files
  uint64_t redraws = 0;                         // of widgets

  DrawCost operator-(const DrawCost& before) const {
    return {pixelsFilled - before.pixelsFilled, pixelsCopied - before.pixelsCopied, glyphs - before.glyphs,
            bytesRead - before.bytesRead, redraws - before.redraws};
  }
};

// A changed rectangle, passed to the host. Where nothing had changed the player passes the whole screen.
struct Drawing {
  WidgetId widget;  // that was drawing; 0 for none
  Bounds rect;      // on the screen
  DrawCost cost;    // since the drawing before
};

enum class ImageRefusal { none, missing, badHeader, badFormat, badColorTable, tooBig, cutShort, badData };

struct EventTrail;

// The engine's own memory of what it is reporting; it lies in the observer, so that an engine without one has none.
struct EngineNotes {
  bool reporting = false;
  WidgetId drawing = 0;
  DrawCost cost, costAtDrawing, costAtStep;  // since the beginning; when the last drawing and the last step ended
  EventTrail* trail = nullptr;               // of the event under way
  std::string line;                          // of the console, not ended yet
  std::optional<uint32_t> glyphPurges;       // as last seen
};

class EngineObserver {
 public:
  EngineObserver() = default;
  virtual ~EngineObserver() = default;
  EngineObserver(const EngineObserver&) = delete;
  EngineObserver& operator=(const EngineObserver&) = delete;

  // Times are the host's, in milliseconds. The cost is that of all since the step before, keys and loads included.
  virtual void stepBegun(uint32_t /*time*/) {}
  virtual void stepEnded(uint32_t /*time*/, const DrawCost&) {}

  // A load, which ends once, loaded or refused; and the end of a page that was there.
  virtual void pageLoading(WidgetId /*frame*/, std::string_view /*name*/) {}
  virtual void pageLoaded(WidgetId /*frame*/, std::string_view /*name*/, bool /*loaded*/) {}
  virtual void pageUnloaded(WidgetId /*frame*/, std::string_view /*name*/) {}

  // A widget is made before what its kind adds has been read.
  virtual void widgetMade(const WidgetMade&) {}
  virtual void widgetGone(WidgetId) {}
  virtual void focusMoved(WidgetId /*frame*/, WidgetId /*from*/, WidgetId /*to*/) {}

  virtual void eventBegun(uint32_t /*code*/, uint32_t /*data*/, bool /*posted*/) {}
  virtual void eventDelivered(const EventDelivery&) {}
  virtual void timerFired(const TimerIdentity&) {}

  // Each script that is entered is left; `failed` when an error ended it.
  virtual void scriptEntered(const ScriptRun&) {}
  virtual void scriptLeft(const ScriptRun&, bool /*failed*/) {}

  virtual void drawn(const Drawing&) {}
  virtual void swapped() {}

  virtual void imageLoaded(std::string_view /*name*/, uint32_t /*width*/, uint32_t /*height*/, uint32_t /*bytes*/) {}
  virtual void imageRefused(std::string_view /*name*/, ImageRefusal) {}
  virtual void imageThrownOut(std::string_view /*name*/, uint32_t /*bytes*/) {}
  virtual void fontOpened(std::string_view /*file*/, bool /*found*/) {}
  virtual void glyphsCleared() {}  // heard when the step ends

  virtual void lineLogged(std::string_view /*line, without its end*/) {}

 protected:
  const DrawCost& costSoFar() const { return notes.cost; }  // since it was hung on

 private:
  friend EngineNotes& notesOf(EngineObserver& observer);

  EngineNotes notes;
};
