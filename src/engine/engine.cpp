#include "engine/engine.h"

#include "engine/base/watch.h"
#include "engine/page/pageload.h"
#include "engine/widgets/widgetkinds.h"

namespace {

constexpr int kFirstDepth = 8;  // until a page says otherwise

// Each thread works on an engine of its own.
thread_local Engine* theEngine = nullptr;

}  // namespace

EngineScope::EngineScope(Engine& engine) : before(theEngine), library(engine.graphics) { theEngine = &engine; }

EngineScope::~EngineScope() { theEngine = before; }

Engine* currentEngine() { return theEngine; }

// The top frame's record has a rectangle and nothing else.
Engine::Engine(Host& h)
    : host(h),
      topFrameRecord(
          {0, 0, 0, 0, kScreenWidth >> 8, kScreenWidth & 255, kScreenHeight >> 8, kScreenHeight & 255, 0, 0, 0, 0}) {}

Engine::~Engine() {
  observer = nullptr;
  const EngineScope here(*this);
  if (topFrame) widgetDestroy(topFrame);
  topFrame = nullptr;
  scriptRuntimeStop(scripts);
  glyphWarming.stop();
  display.reset();
}

bool Engine::start(void* cacheMemory, size_t cacheSize) {
  const EngineScope here(*this);
  display = std::make_unique<DisplaySurface>(kScreenWidth, kScreenHeight, kFirstDepth);
  images.init(cacheMemory, cacheSize);
  if (!scriptRuntimeStart(scripts)) return false;
  topFrame = frameCreate(nullptr, nullptr, {&topFrameRecord, 0}).release();
  if (!topFrame) return false;
  addWidgetKinds(widgetTypes);
  return glyphWarming.start();
}

void Engine::step() {
  const EngineScope here(*this);
  if (observerListens()) return;
  if (const ObserverReport report; report) report->stepBegun(hostMilliseconds());
  work();
  if (observer) tellStepEnd();
}

void Engine::work() {
  EngineCall call;
  timers.fire();
  redraws.drain();
  if (display->swapAtStepEnd) {
    displaySwap(0);
    display->swapAtStepEnd = false;
  }
}

void Engine::tellStepEnd() {
  EngineNotes& notes = notesOf(*observer);
  const DrawCost cost = notes.cost - notes.costAtStep;
  notes.costAtStep = notes.cost;
  const ObserverReport report;
  const uint32_t before = notes.glyphPurges.value_or(graphics.fGlyphPurges);
  notes.glyphPurges = graphics.fGlyphPurges;
  if (before != graphics.fGlyphPurges) report->glyphsCleared();
  report->stepEnded(hostMilliseconds(), cost);
}

bool Engine::busy() const { return redraws.pending() || (display && display->swapAtStepEnd); }

int engineInit(void* cacheMemory, size_t cacheSize) { return theEngine->start(cacheMemory, cacheSize); }
void engineStep() { theEngine->step(); }
Frame* topFrame() { return theEngine->topFrame; }

// ---- what the engine's parts find of the current one

EngineObserver* currentObserver() { return theEngine ? theEngine->observer : nullptr; }
WidgetId newWidgetId() { return theEngine ? ++theEngine->widgetsEver : 0; }

ClutShelf& currentCluts() { return theEngine->cluts; }
DisplaySurface& currentDisplay() { return *theEngine->display; }
EventTargets& currentTargets() { return theEngine->targets; }
FontShelf& currentFonts() { return theEngine->fonts; }
GlyphWarming& currentGlyphWarming() { return theEngine->glyphWarming; }
Graveyard& currentGraveyard() { return theEngine->graveyard; }
ImageCache& currentImages() { return theEngine->images; }
LoadCount& currentLoadCount() { return theEngine->loadCount; }
RedrawQueue& currentRedraws() { return theEngine->redraws; }
ScriptingLanguages& currentLanguages() { return theEngine->languages; }
ScriptRuntime* runningScripts() { return theEngine->scripts.get(); }
TextPen& currentTextPen() { return theEngine->textPen; }
TimerQueue& currentTimers() { return theEngine->timers; }
WidgetTypes& currentWidgetTypes() { return theEngine->widgetTypes; }
