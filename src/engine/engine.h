// One running system: everything that a page and its scripts can reach belongs to an engine.
//
// The plain functions of the engine's headers (timerStart, frameLoad, hostLog ...) act on the engine that is current on
// the calling thread; an EngineScope makes one current. One engine is used by one thread at a time, and different
// engines share nothing that is written to.
#pragma once

#include <cstddef>
#include <memory>

#include "engine/base/observer.h"
#include "engine/events/eventtarget.h"
#include "engine/events/graveyard.h"
#include "engine/events/redrawqueue.h"
#include "engine/events/timer.h"
#include "engine/images/imagecache.h"
#include "engine/page/frame.h"
#include "engine/page/language.h"
#include "engine/page/widgettypes.h"
#include "engine/screen/clut.h"
#include "engine/screen/display.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/text/fonts.h"
#include "engine/text/glyphwarming.h"
#include "engine/text/textdraw.h"
#include "gfx/foundation/hsglibrary.h"
#include "host/host.h"

class Engine {
 public:
  // The host carries out host.h for this engine and must outlive it. Nothing is started.
  explicit Engine(Host& host);

  // Frees everything, without a message or a script.
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  // Starts everything, in order, over a block of memory for the image cache that must outlive the engine. False on
  // failure; a caller may go on without what is missing.
  bool start(void* cacheMemory, size_t cacheSize);

  // One step: due timers, the redraw queue, a pending swap. To be called for ever.
  void step();

  // Whether a step would do anything now other than firing timers.
  bool busy() const;

  Host& host;
  EngineObserver* observer = nullptr;  // hears what happens, but for the engine's end; changed between two calls
  WidgetId widgetsEver = 0;            // the number that the last target got

  Graveyard graveyard;
  TimerQueue timers;
  EventTargets targets;
  RedrawQueue redraws;
  ClutShelf cluts;
  ImageCache images;
  FontShelf fonts;
  hsGLibrary graphics;                      // reads the fonts in place
  std::unique_ptr<DisplaySurface> display;  // null before the start
  TextPen textPen;
  GlyphWarming glyphWarming;
  ScriptingLanguages languages;
  WidgetTypes widgetTypes;
  LoadCount loadCount;
  ScriptRuntimePtr scripts;   // null before the start
  Frame* topFrame = nullptr;  // fills the screen, and goes with the engine; null before the start

 private:
  void work();
  void tellStepEnd();

  PageData topFrameRecord;
};

// Makes an engine current on this thread, and the one before it again at its end.
class EngineScope {
 public:
  explicit EngineScope(Engine& engine);
  ~EngineScope();
  EngineScope(const EngineScope&) = delete;
  EngineScope& operator=(const EngineScope&) = delete;

 private:
  Engine* const before;
  hsGLibraryScope library;
};

// The engine that is current on this thread, or null.
Engine* currentEngine();

// On the current engine; engineInit returns non-zero on success.
int engineInit(void* cacheMemory, size_t cacheSize);
void engineStep();
Frame* topFrame();
