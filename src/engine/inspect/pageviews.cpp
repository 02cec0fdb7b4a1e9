// Frames, their styles, fonts and timers as views.
#include "bob/bob.h"
#include "engine/engine.h"
#include "engine/inspect/shown.h"
#include "engine/scriptbindings/bindings.h"

namespace {

std::string orNothing(const char* text) { return text ? text : ""; }

std::vector<Frame*> framesOf(const Engine& engine) {
  std::vector<Frame*> frames;
  for (Widget* widget : walkWidgets(engine))
    if (auto* frame = dynamic_cast<Frame*>(widget)) frames.push_back(frame);
  return frames;
}

PageState stateOf(const Frame* frame) {
  if (!frame->pageData) return PageState::empty;
  if (frame->unloading) return PageState::unloading;
  return frame->targetFlags & kTargetActive ? PageState::loaded : PageState::loading;
}

FrameView viewOf(const Frame* frame) {
  FrameView view;
  view.id = frame->id;
  view.around = frameOf(frame) ? frameOf(frame)->id : 0;
  view.name = orNothing(frame->name);
  view.state = stateOf(frame);
  if (view.state == PageState::empty) return view;
  view.page = frame->pageName;
  view.eightBit = pageFlags(*frame->pageData) & kPageIs8Bit;
  for (const Widget* widget = frame->widgets; widget; widget = widget->nextInFrame) ++view.widgets;
  view.focus = frame->focus ? frame->focus->id : 0;
  view.colorTable = orNothing(attrPlainString(frame->rootObject, "colorTable"));
  view.start = orNothing(attrPlainString(frame->rootObject, "start"));
  return view;
}

// Styles lie in the frame in the order of the page's table.
std::string fontOf(const Frame* frame, uint32_t place) {
  const auto attribute = attrFind(frame->rootObject, "textStyles");
  PageTable table;
  if (!attribute || PageTag(attribute->tag) != PageTag::table || !attrTable(*attribute, &table)) return "";
  return place < table.count() ? orNothing(attrPlainString(table.object(place), "font")) : "";
}

StyleView viewOf(const Frame* frame, const NamedStyle& named, uint32_t place) {
  const TextStyle& style = named.style;
  const auto has = [&style](uint32_t flag) { return (style.styleFlags & flag) != 0; };
  StyleView view;
  view.frame = frame->id;
  view.name = named.name;
  view.font = fontOf(frame, place);
  view.fontState = fontStateOf(style.font);
  view.size = style.size;
  view.color = style.color;
  if (has(kTextStyleBackground)) view.bgColor = style.bgColor;
  view.antialias = has(kTextStyleAntialias);
  view.gridfit = has(kTextStyleGridfit);
  view.underline = has(kTextStyleUnderline);
  view.horScale = style.horScale;
  view.letterExtra = style.letterExtra;
  view.spaceExtra = style.spaceExtra;
  return view;
}

}  // namespace

std::vector<FrameView> inspectFrames(Engine& engine) {
  const EngineScope here(engine);
  std::vector<FrameView> views;
  for (const Frame* frame : framesOf(engine)) views.push_back(viewOf(frame));
  return views;
}

std::vector<StyleView> inspectStyles(Engine& engine) {
  const EngineScope here(engine);
  std::vector<StyleView> views;
  for (const Frame* frame : framesOf(engine)) {
    uint32_t place = 0;
    if (frame->pageData)
      for (const NamedStyle& named : frame->textStyles) views.push_back(viewOf(frame, named, place++));
  }
  return views;
}

std::vector<FontView> inspectFonts(Engine& engine) {
  const EngineScope here(engine);
  std::vector<FontView> views;
  for (const FontEntry& font : engine.fonts.all()) views.push_back({font.name, font.size, fontStateOf(&font)});
  return views;
}

std::vector<TimerView> inspectTimers(Engine& engine) {
  const EngineScope here(engine);
  std::vector<TimerView> views;
  for (const auto& [due, timer] : engine.timers.waiting()) {
    TimerView view{timer->identity(), due, timer->interval, (timer->timerFlags & kTimerRepeating) != 0, ""};
    if (const auto* script = dynamic_cast<const ScriptTimer*>(timer))
      view.callback = bobFunctionName(engine.scripts->interp, script->callback);
    views.push_back(std::move(view));
  }
  return views;
}
