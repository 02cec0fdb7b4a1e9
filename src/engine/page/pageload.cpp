#include "engine/page/pageload.h"

#include <memory>
#include <utility>

#include "engine/base/hostfile.h"
#include "engine/base/log.h"
#include "engine/base/watch.h"
#include "engine/events/graveyard.h"
#include "engine/page/widgettypes.h"
#include "engine/screen/clut.h"
#include "engine/screen/display.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "host/host.h"

namespace {

constexpr int kMaxFrameNesting = 32;

// Tells an observer of a load, and at the end of the scope how it went.
struct LoadReport {
  LoadReport(Frame* f, const char* p) : frame(f), path(p) {
    if (const ObserverReport report; report) report->pageLoading(frame->id, path);
  }
  ~LoadReport() {
    reportEnd([this](EngineObserver& observer) { observer.pageLoaded(frame->id, path, loaded != 0); });
  }
  LoadReport(const LoadReport&) = delete;
  LoadReport& operator=(const LoadReport&) = delete;

  Frame* const frame;
  const char* const path;
  int loaded = 0;
};

class LoadUnderWay {
 public:
  LoadUnderWay() {
    if (count.loadsUnderWay++ == 0) count.widgetsMade = 0;
  }
  ~LoadUnderWay() { --count.loadsUnderWay; }
  LoadUnderWay(const LoadUnderWay&) = delete;
  LoadUnderWay& operator=(const LoadUnderWay&) = delete;

 private:
  LoadCount& count = currentLoadCount();
};

// The whole file; nothing when it is missing, which is logged, or can't be read.
std::unique_ptr<PageData> readPage(const char* path) {
  const HostFilePtr file = openHostFile(path);
  if (!file) {
    hostLog(" -- '%s' not found\n", path);
    return nullptr;
  }
  auto bytes = readWhole(file.get());
  if (!bytes) return nullptr;
  if (!pageCheck(bytes->data(), bytes->size())) {
    hostLog("Failed to load page file: '%s'\n", path);
    return nullptr;
  }
  return std::make_unique<PageData>(std::move(*bytes));
}

// What remains to be done for a page to go when its events and scripts have been heard, or can't be.
void finishUnload(Frame* frame) noexcept {
  if (frame->language) frame->language->detach(frame);
  targetDestroyLists(frame);
  frame->abandonPage();
  frame->unloading = false;
}

// One load of one frame, as long as nobody else has loaded or unloaded it. A page that an exception cuts short goes.
class PageLoad {
 public:
  explicit PageLoad(Frame* f) : frame(f), generation(f->generation) {}
  ~PageLoad() {
    if (!ended && !stale()) finishUnload(frame);
  }
  PageLoad(const PageLoad&) = delete;
  PageLoad& operator=(const PageLoad&) = delete;

  int run() {
    const int loaded = makePage();
    ended = true;
    return loaded;
  }

 private:
  int makePage() {
    if (!build() || !startLanguage() || !setScreen()) return fail();
    // From here on nothing fails: a page whose script opens another one in its place has been loaded all the same.
    if (!loadScripts()) return 1;
    targetActivate(frame);
    frameRunScript(frame, "onLoad");
    if (!stale()) focusStart();
    return 1;
  }

  bool stale() const { return frame->gone || frame->generation != generation; }
  bool isTop() const { return frame->parent == nullptr; }

  // A load that a page inside has overtaken has failed only if it left no page in the frame.
  int fail() {
    if (stale()) return !frame->gone && frame->pageData;
    frameUnload(frame);
    return 0;
  }

  bool build() {
    PageTable styles;
    if (attrTable(frame->rootObject, "textStyles", &styles) && !stylesLoad(frame, styles)) return false;
    WidgetPtr<> root = widgetFromRecord(frame, frame, frame->rootObject);
    if (!root || stale()) return false;
    frame->append(std::move(root));
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
    currentDisplay().swapAtStepEnd = true;
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

  Frame* const frame;
  const uint32_t generation;
  bool ended = false;
};

int load(Frame* frame, const char* path) {
  const LoadUnderWay underWay;
  if (frame->gone || frame->unloading) return 0;
  if (frame->pageData) frameUnload(frame);
  if (frame->gone) return 0;
  if (frame->nesting > kMaxFrameNesting || engineStackSpent() || !hostBreathe()) {
    hostLog(" -- '%s' not found\n", path);
    return 0;
  }

  std::unique_ptr<PageData> page = readPage(path);
  if (!page) return 0;
  frame->pageData = std::move(page);
  frame->pageName = path;
  frame->rootObject = pageRoot(*frame->pageData);
  frame->widgetsMade = 0;
  frame->widgets = nullptr;
  frame->widgetsTail = &frame->widgets;
  frame->names.clear();
  frame->textStyles.clear();
  ++frame->generation;
  return PageLoad(frame).run();
}

}  // namespace

WidgetPtr<Frame> frameCreate(WidgetOwner* owner, Widget* parentWidget, PageObject record) {
  EngineCall call;
  auto frame = widgetCreate<Frame>(owner, parentWidget, record);
  if (!frame) return nullptr;
  if (const Frame* around = frameOf(frame.get())) frame->nesting = around->nesting + 1;
  frame->scriptEnv = scriptScopeCreate(frame.get());
  if (!frame->scriptEnv) return nullptr;
  if (const char* path = widgetAttrString(frame.get(), "src")) frameLoad(frame.get(), path);
  return frame;
}

int frameLoad(Frame* frame, const char* path) {
  EngineCall call;
  if (observerListens()) return 0;
  LoadReport report(frame, path);
  return report.loaded = load(frame, path);
}

void frameUnload(Frame* frame) {
  EngineCall call;
  if (frame->gone || frame->unloading || !frame->pageData || observerListens()) return;
  frame->unloading = true;
  struct End {  // which comes however the events and the script end
    ~End() { finishUnload(frame); }
    Frame* frame;
  } const end{frame};
  ++frame->generation;
  while (Widget* widget = frame->widgets) {
    eventSendSimple(widget, kWidgetDestroyed, 0);
    if (frame->widgets == widget) frame->takeFirst().reset();
  }
  frame->focus = nullptr;
  frame->textStyles.clear();
  frameRunScript(frame, "onUnload");
}

int frameUnloadAndClear(Frame* frame) {
  EngineCall call;
  if (!frame->pageData || frame->unloading) return 0;
  frameUnload(frame);
  widgetMarkDirty(frame, kWidgetFullRedraw);
  return 1;
}
