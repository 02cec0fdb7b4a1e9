// Loading and unloading a page, step by step.
//
// Any step that runs a script may find, behind it, that the frame has been unloaded, loaded again or destroyed. The
// load then stops and leaves the frame to whoever took it.
#include <memory>

#include "engine/clut.h"
#include "engine/core.h"
#include "engine/display.h"
#include "engine/frame.h"
#include "engine/graveyard.h"
#include "engine/redraw.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/textstyle.h"
#include "engine/wholefile.h"
#include "engine/widgettypes.h"
#include "host/host.h"

namespace {

constexpr int kMaxFrameNesting = 32;
constexpr uint32_t kMaxPageWidgets = 65536;
constexpr uint32_t kMaxLoadWidgets = 4 * kMaxPageWidgets;  // with the pages nested in the page

// Widgets made since the outermost load under way began, so that pages that hold themselves end.
uint32_t widgetsMade = 0;
int loadsUnderWay = 0;

class LoadCount {
 public:
  LoadCount() {
    if (loadsUnderWay++ == 0) widgetsMade = 0;
  }
  ~LoadCount() { --loadsUnderWay; }
};

// The whole file; nothing when it is missing, which is logged, or can't be read.
std::unique_ptr<PageData> readPage(const char* path) {
  HostFile* file = hostOpen(path);
  if (!file) {
    hostLog(" -- '%s' not found\n", path);
    return nullptr;
  }
  auto bytes = readWhole(file);
  if (!bytes) return nullptr;
  if (!pageCheck(bytes->data(), bytes->size())) {
    hostLog("Failed to load page file: '%s'\n", path);
    return nullptr;
  }
  return std::make_unique<PageData>(std::move(*bytes));
}

// One load of one frame, as long as nobody else has loaded or unloaded it.
class PageLoad {
 public:
  explicit PageLoad(Frame* f) : frame(f), generation(f->generation) {}

  int run() {
    if (!build() || !startLanguage() || !setScreen()) return fail();
    // From here on nothing fails: a page whose script opens another one in its place has been loaded all the same.
    if (!loadScripts()) return 1;
    targetActivate(frame);
    frameRunScript(frame, "onLoad");
    if (!stale()) focusStart();
    return 1;
  }

 private:
  bool stale() const { return frame->gone || frame->generation != generation; }
  bool isTop() const { return frame->parent == nullptr; }

  // A load that a page inside has overtaken has failed only if it left no page behind.
  int fail() {
    if (stale()) return !frame->gone && frame->pageData;
    frameUnload(frame);
    return 0;
  }

  bool build() {
    PageTable styles;
    if (attrTable(frame->rootObject, "textStyles", &styles) && !stylesLoad(frame, styles)) return false;
    Widget* root = widgetFromRecord(frame, frame, frame->rootObject);
    if (!root) return false;
    if (stale()) {
      widgetDestroy(root);
      return false;
    }
    frameAppendWidget(frame, root);
    return true;
  }

  bool startLanguage() {
    const char* name = "script";
    attrString(frame->rootObject, "scriptingLanguage", &name);
    const ScriptingLanguage* language = languageFind(name);
    if (!language) {
      hostLog("Unknown scripting language '%s'\n", name);
      return false;
    }
    frame->language = language;
    language->attach(frame);
    return !stale();
  }

  // Depth and colours of the screen are the top frame's page's.
  bool setScreen() {
    if (!isTop()) return true;
    displaySetDepth(pageFlags(*frame->pageData) & kPageIs8Bit ? 8 : 16);
    const char* table;
    if (attrString(frame->rootObject, "colorTable", &table)) {
      Clut* clut = clutLoad(table);
      if (!clut) {
        if (logVerbose) hostLog("Can't load CLUT '%s'\n", table);
        return false;
      }
      clutActivate(clut);
    }
    requestSwap(0);
    return true;
  }

  // False when a script file has taken the page away.
  bool loadScripts() {
    PageTable scripts;
    if (!attrTable(frame->rootObject, "scripts", &scripts)) return true;
    const ScriptingLanguage* language = frame->language;
    for (uint32_t i = 0; i < scripts.count(); ++i) {
      const char* file = scripts.string(i);
      if (!file) continue;
      const bool loaded = language->loadFile(frame, file);
      if (!loaded) hostLog("Error loading '%s'\n", file);
      if (stale()) return false;
    }
    return true;
  }

  void focusStart() {
    const char* name;
    if (!attrString(frame->rootObject, "start", &name)) return;
    Widget* widget = frameFindWidget(frame, name);
    if (!widget) hostLog("Can't find starting widget '%s'\n", name);
    widgetFocus(frame, widget);
  }

  Frame* frame;
  uint32_t generation;
};

// Takes the head off the frame's list.
Widget* takeWidget(Frame* frame) {
  Widget* widget = frame->widgets;
  frame->widgets = widget->nextInFrame;
  if (!frame->widgets) frame->widgetsTail = &frame->widgets;
  if (frame->focus == widget) frame->focus = nullptr;
  return widget;
}

void dropPage(Frame* frame) {
  if (frame->pageData) bury(frame->pageData.release());
}

}  // namespace

Frame* frameCreate(Frame* owner, Widget* parentWidget, PageObject record) {
  EngineCall call;
  Frame* frame = widgetCreate<Frame>(owner, parentWidget, record);
  if (!frame) return nullptr;
  if (owner) frame->nesting = owner->nesting + 1;
  frame->scriptEnv = scriptScopeCreate(frame);
  if (!frame->scriptEnv) {
    widgetDestroy(frame);
    return nullptr;
  }
  if (const char* path = widgetAttrString(frame, "src")) frameLoad(frame, path);
  return frame;
}

bool frameCountWidget(Frame* frame) {
  return frame->widgetsMade++ < kMaxPageWidgets && widgetsMade++ < kMaxLoadWidgets;
}

int frameLoad(Frame* frame, const char* path) {
  EngineCall call;
  LoadCount count;
  if (frame->gone || frame->unloading) return 0;
  if (frame->pageData) frameUnload(frame);
  if (frame->gone) return 0;
  if (frame->nesting > kMaxFrameNesting || engineStackSpent()) return hostLog(" -- '%s' not found\n", path);

  std::unique_ptr<PageData> page = readPage(path);
  if (!page) return 0;
  frame->pageData = std::move(page);
  frame->rootObject = pageRoot(*frame->pageData);
  frame->widgetsMade = 0;
  frame->widgets = nullptr;
  frame->widgetsTail = &frame->widgets;
  frame->textStyles = nullptr;
  ++frame->generation;
  return PageLoad(frame).run();
}

void frameUnload(Frame* frame) {
  EngineCall call;
  if (frame->gone || frame->unloading || !frame->pageData) return;
  frame->unloading = true;
  ++frame->generation;
  while (Widget* widget = frame->widgets) {
    eventSendSimple(widget, kWidgetDestroyed, 0);
    if (frame->widgets == widget) widgetDestroy(takeWidget(frame));
  }
  frame->focus = nullptr;
  stylesFree(frame);
  frameRunScript(frame, "onUnload");
  if (frame->language) frame->language->detach(frame);
  targetDestroyLists(frame);
  dropPage(frame);
  frame->unloading = false;
}

int frameUnloadAndClear(Frame* frame) {
  EngineCall call;
  if (!frame->pageData || frame->unloading) return 0;
  frameUnload(frame);
  widgetMarkDirty(frame, kWidgetFullRedraw);
  return 1;
}

void frameAbandonPage(Frame* frame) {
  ++frame->generation;
  while (frame->widgets) widgetDestroy(takeWidget(frame));
  stylesFree(frame);
  dropPage(frame);
}
