#include "engine/core.h"

#include "engine/clut.h"
#include "engine/display.h"
#include "engine/frame.h"
#include "engine/glyphwarming.h"
#include "engine/graveyard.h"
#include "engine/imagecache.h"
#include "engine/language.h"
#include "engine/redraw.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/widgettypes.h"
#include "gfx/text/hsgglyphcache.h"
#include "host/host.h"

namespace {

constexpr int kScreenWidth = 720, kScreenHeight = 480;  // pixels
constexpr int kFirstDepth = 8;                          // until a page says otherwise

Frame* theTopFrame = nullptr;
bool swapPending = false;
int swapValue = 0;

// The top frame's record has a rectangle and nothing else.
PageObject topFrameRecord() {
  static const PageData record(
      {0, 0, 0, 0, kScreenWidth >> 8, kScreenWidth & 255, kScreenHeight >> 8, kScreenHeight & 255, 0, 0, 0, 0});
  return {&record, 0};
}

}  // namespace

int engineInit(void* cacheMemory, size_t cacheSize) {
  displayCreate(kScreenWidth, kScreenHeight, kFirstDepth);
  imageCacheInit(cacheMemory, cacheSize);
  if (!scriptRuntimeStart()) return 0;
  theTopFrame = frameCreate(nullptr, nullptr, topFrameRecord());
  if (!theTopFrame) return 0;
  widgetTypesRegisterAll();
  return glyphWarmingStart();
}

void engineStep() {
  EngineCall call;
  timersFire();
  redrawDrain();
  if (swapPending) {
    displaySwap(swapValue);
    swapPending = false;
  }
}

bool engineBusy() { return redrawPending() || swapPending; }

Frame* topFrame() { return theTopFrame; }

void requestSwap(int value) {
  swapValue = value;
  swapPending = true;
}

void engineShutdown() {
  if (theTopFrame) widgetDestroy(theTopFrame);
  theTopFrame = nullptr;
  swapPending = false;
  scriptRuntimeStop();
  glyphWarmingStop();
  targetsReset();
  timersReset();
  redrawReset();
  languagesReset();
  widgetTypesReset();
  imageCacheFree();
  clutsFree();
  displayDestroy();
  hsGGlyphCache::Shutdown();
}
