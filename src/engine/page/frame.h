// Frames: widgets that hold a page of their own.
//
// A frame is empty or loaded. It owns the bytes of its page, and every widget, name and script on it points into them.
// Scripts can load and unload a frame from inside any hook of its own load, so each load holds a generation: once the
// frame has moved on, an older load stops at its next step.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/format/pagefile.h"
#include "engine/page/language.h"
#include "engine/page/scriptscope.h"
#include "engine/page/widget.h"
#include "engine/page/widgetnames.h"
#include "engine/text/textstyle.h"

// Widgets made since the outermost load under way began, so that pages that hold themselves end.
struct LoadCount {
  uint32_t widgetsMade = 0;
  int loadsUnderWay = 0;
};

LoadCount& currentLoadCount();  // of the engine that is current on this thread

inline constexpr uint32_t kMaxPageWidgets = 65536;  // a page with more doesn't load

struct Frame : Widget, WidgetOwner {
  using Widget::Widget;

  int handleEvent(const Event* event) override;  // frameHandleEvent
  void abandonPage() noexcept override;

  Widget* findWidget(const char* name) const override;
  WidgetId ownerId() const override { return id; }
  bool countWidget() override;
  int ownerEvent(const Event& event) override;                                                  // frameEvent
  void runScript(const EventTarget* widget, ScriptAttribute hook, PageScript script) override;  // in its language

  void append(WidgetPtr<>&& widget);  // to the list of the page's widgets
  WidgetPtr<> takeFirst();            // off the list, and out of the focus

  std::unique_ptr<PageData> pageData;  // null when no page is loaded
  std::string pageName;                // of the file that was loaded last
  PageObject rootObject;               // like language, stale after an unload until the next load
  Widget* widgets = nullptr;           // all the page's widgets; children come before their parent, the root last
  Widget** widgetsTail = &widgets;
  WidgetNames names;         // of the same
  uint32_t widgetsMade = 0;  // by the page's load
  Widget* focus = nullptr;
  TextStyles textStyles;
  const ScriptingLanguage* language = nullptr;
  std::unique_ptr<ScriptScope> scriptEnv;

  uint32_t generation = 0;  // of the page; moves on at every load and unload
  bool unloading = false;   // refuses loads and unloads
  int nesting = 1;          // frames from the top one down to this
};

// The frame that owns the widget; null for the top frame.
inline Frame* frameOf(const Widget* widget) { return static_cast<Frame*>(widget->owner); }

Widget* frameFindWidget(const Frame* frame, const char* name);  // the first of that name; null if none

// Builds the page's styles from the table. 0 when memory runs out, with the styles up to there in the frame.
int stylesLoad(Frame* frame, const PageTable& table);
const TextStyle* styleFind(const Frame* frame, const char* name);  // the first of that name, or null

int frameEvent(Frame* frame, const Event& event);        // the frame's own answer: keys, navigation, drawing
int frameHandleEvent(Frame* frame, const Event* event);  // to the focused widget if there is one
void widgetFocus(Frame* frame, Widget* widgetOrNull);    // notifies both widgets and runs onBlur and onFocus
int frameRunScript(Frame* frame, ScriptAttribute name);  // of the root object; 1 if there is one
