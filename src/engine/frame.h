// Frames: widgets that hold a page of their own.
//
// A frame is empty or loaded. It owns the bytes of its page, and every widget, name and script on it points into them.
// Scripts can load and unload a frame from inside any hook of its own load, so each load holds a generation: once the
// frame has moved on, an older load stops at its next step.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/language.h"
#include "engine/pagefile.h"
#include "engine/widget.h"

struct TextStyleNode;
class ScriptScope;

struct Frame : Widget {
  using Widget::Widget;
  ~Frame() override;

  int handleEvent(const Event* event) override;  // frameHandleEvent

  std::unique_ptr<PageData> pageData;  // null when no page is loaded
  PageObject rootObject;               // like language, stale after an unload until the next load
  Widget* widgets = nullptr;           // all the page's widgets; children stand ahead of their parent, the root last
  Widget** widgetsTail = &widgets;
  uint32_t widgetsMade = 0;  // by the page's load
  Widget* focus = nullptr;
  TextStyleNode* textStyles = nullptr;
  const ScriptingLanguage* language = nullptr;
  std::unique_ptr<ScriptScope> scriptEnv;

  uint32_t generation = 0;  // of the page; moves on at every load and unload
  bool unloading = false;   // refuses loads and unloads
  int nesting = 1;          // frames from the top one down to this
};

// ---- life

// Makes a frame and loads the page that its record's `src` names; that load's result is ignored, so a nested frame
// whose page is missing still exists. Null on failure.
Frame* frameCreate(Frame* owner, Widget* parentWidget, PageObject record);

// Loads the page, over the present one if there is one. 1 on success; otherwise the log says why and the frame is
// empty. `path` must stay put while the page loads.
int frameLoad(Frame* frame, const char* path);

void frameUnload(Frame* frame);

// What scripts call: 0 when there is no page or it is going already; else unloads and has the area cleared.
int frameUnloadAndClear(Frame* frame);

// Drops the page without events, scripts or words, for a frame that goes with the page around it.
void frameAbandonPage(Frame* frame);

// ---- widgets

Widget* frameFindWidget(const Frame* frame, const char* name);  // the first of that name; null if none
void frameAppendWidget(Frame* frame, Widget* widget);

// Counts one more widget against what the page being loaded, and all the pages in it, may hold; false when full.
bool frameCountWidget(Frame* frame);

// ---- events and scripts

int frameEvent(Frame* frame, const Event& event);             // the frame's own answer: keys, navigation, drawing
int frameHandleEvent(Frame* frame, const Event* event);       // to the focused widget if there is one
void widgetFocus(Frame* frame, Widget* widgetOrNull);         // tells both widgets and runs onBlur and onFocus
void frameRun(Frame* frame, PageScript script);               // in the frame's language
int frameRunScript(Frame* frame, const char* attributeName);  // of the root object; 1 if there is one
