// What the files of the script bindings share: the runtime, wrappers, and values on their way to and from widgets.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bob/bob.h"
#include "engine/events/eventtarget.h"
#include "engine/events/scripthandle.h"
#include "engine/events/timer.h"
#include "engine/events/value.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "engine/text/textstyle.h"

struct Frame;
struct Widget;
class StringTableFile;

// The hook of a script function on a target.
struct ScriptHandler : EventHandler {
  using EventHandler::EventHandler;
  int fn(const Event* event) override;

  BobValue callback = kBobNil;
  WidgetId target = 0;
  ScriptKind kind = ScriptKind::handler;
  std::list<ScriptHandler*>::iterator place{};  // in the runtime's list
};

// A target that a script made. It lives as long as a wrapper or the active list has it.
struct ScriptTarget : EventTarget {
  using EventTarget::EventTarget;
  int handleEvent(const Event* event) override;

  bool hasWrapper = true;
  std::list<ScriptTarget*>::iterator listed{};  // in the runtime's list
};

// While it waits or fires, the timer keeps its callback alive; otherwise its wrapper does, and `callback` is unset.
struct ScriptTimer : Timer {
  using Timer::Timer;
  TimerIdentity identity() const override { return {TimerKind::script}; }

  BobValue callback = kBobNil;
  bool hasWrapper = true;
  int firing = 0;
  ScriptHandle handle;
  std::list<ScriptTimer*>::iterator listed{};  // in the runtime's list
};

// What a style's wrapper has.
struct ScriptStyle {
  TextStyle style;
  ScriptHandle handle;
  std::list<ScriptStyle>::iterator place{};  // in the runtime's list
};

struct CollectorRoot {
  void (*copyRoots)(BobInterp*, void*);
  void* data;
};

// Scripts print to the message console and read nothing.
class ConsoleStream : public BobStream {
 public:
  int PutC(int c) override;
};

// The symbols that a style is read by. They stay where they are, and are there from the start.
struct StyleKeys {
  BobValue font, size, color, bgColor, tracking, underline, aliasCount;
};

struct ScriptRuntime {
  BobInterp* interp = nullptr;
  ConsoleStream console;
  bool opensPageFile = false;  // the next file to be opened is the page's, not one that a script asks for
  uint32_t targetKind = 0, eventKind = 0, widgetKind = 0, frameKind = 0, styleKind = 0, timerKind = 0, tableKind = 0;
  StyleKeys styleKeys{};
  std::vector<std::pair<std::string, uint32_t>> widgetTypes;  // `type` of a widget, kind of its wrappers
  // Each newest first. Timers and targets are the runtime's own, but end by timerDestroy and in the graveyard, since
  // they may be in use; handlers belong to their targets.
  std::list<ScriptHandler*> handlers;
  std::list<ScriptTimer*> timers;
  std::list<ScriptTarget*> targets;
  std::list<ScriptStyle> styles;
  std::list<std::unique_ptr<StringTableFile>> tables;
  std::vector<CollectorRoot> roots;
};

// Of the engine that is current on this thread. Only for what runs between its scripts' start and stop.
inline ScriptRuntime& currentScripts() { return *runningScripts(); }

// Puts what a script has made on the runtime's list, in an entry that was made before it: this can't fail.
template <class Made>
void scriptEnlist(std::list<Made*>& all, std::list<Made*>& entry, Made* made) {
  entry.front() = made;
  made->listed = entry.begin();
  all.splice(all.begin(), entry);
}

// ---- the classes; each defines its kind in the root scope, in the order of these lines. False on failure.

bool scriptDefineEvents(ScriptRuntime& runtime);
bool scriptDefineTarget(ScriptRuntime& runtime);
bool scriptDefineWidget(ScriptRuntime& runtime);
bool scriptDefineFrame(ScriptRuntime& runtime);
bool scriptDefineTextStyle(ScriptRuntime& runtime);
bool scriptDefineTimer(ScriptRuntime& runtime);
bool scriptDefineStringTable(ScriptRuntime& runtime);

extern const BobPropertyRow kWidgetProperties[];

// ---- the language's operations on frames

int scriptAttach(Frame* frame);
int scriptDetach(Frame* frame) noexcept;
int scriptLoadFile(Frame* frame, const char* path);
int scriptRun(Frame* frame, const uint8_t* bytes, uint32_t length);

// ---- what a collection must copy; and what is left when the runtime stops

void scriptCopyHandlerRoots(ScriptRuntime& runtime);
void scriptCopyTimerRoots(ScriptRuntime& runtime);
void scriptDestroyTimers(ScriptRuntime& runtime);
void scriptDestroyTargets(ScriptRuntime& runtime);

// ---- wrappers; like all that makes values, these can collect

BobValue scriptWrapTarget(BobInterp* interp, uint32_t kind, EventTarget* target);
BobValue scriptWrapWidget(BobInterp* interp, Widget* widget);
BobValue scriptWrapEvent(BobInterp* interp, const Event& event);
BobValue scriptWrapStyle(BobInterp* interp, const TextStyle* style);  // around a copy
const TextStyle* scriptStyleOf(BobInterp* interp, BobValue value);    // null for what is no style

// The target of a wrapper's pointer, or of a value; null for an inactive one. A script can give a Widget
// wrapper a target that is no widget (`initialize` is inherited): such a wrapper is inactive as a widget.
Widget* scriptWidgetOf(void* pointer);
Widget* scriptWidgetOf(BobInterp* interp, BobValue value);
Frame* scriptFrameOf(void* pointer);

// Releases the target that a script made for this wrapper, if it has one. A target that still hears events lives on
// until it is taken off the active list.
void scriptReleaseTarget(BobInterp* interp, BobValue wrapper);

// ---- values

bool BobToKuiValue(BobInterp* interp, BobValue value, KuiValue* out);  // a string looks into the heap
bool KuiToBobValue(BobInterp* interp, const KuiValue& value, BobValue* out);

// Logs a complaint about what a script did.
void scriptComplain(const char* text);

inline constexpr char kInactiveWidget[] = "Operation attempted on inactive widget\n";
inline constexpr char kInactiveFrame[] = "Operation attempted on inactive frame\n";
inline constexpr char kExpectingInteger[] = "Expecting integer value\n";
