#include "studio/timeline/runwatch.h"

#include <cstdio>
#include <utility>

#include "engine/events/event.h"

namespace {

constexpr size_t kMostText = 200;  // bytes

constexpr std::string_view kScriptError = "Error: ";  // how the language's messages begin

std::string fileOf(std::string_view path) { return std::string(path.substr(path.rfind('/') + 1)); }

// On one line, without half a letter at its end.
std::string shortened(std::string text) {
  for (char& c : text)
    if (uint8_t(c) < ' ') c = ' ';
  if (text.size() <= kMostText) return text;
  size_t end = kMostText;
  while (end > 0 && (uint8_t(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end) + "...";
}

std::string directionName(uint32_t data) {
  std::string name;
  if (data & kDirectionUp) name += "Up";
  if (data & kDirectionDown) name += "Down";
  if (data & kDirectionLeft) name += "Left";
  if (data & kDirectionRight) name += "Right";
  return name.empty() ? "no direction" : name;
}

std::string eventName(uint32_t code, uint32_t data) {
  switch (code) {
    case kDirectionKey: return "key " + directionName(data);
    case kSelectKey: return "key Select";
    case kBackspaceKey: return "key Backspace";
    case kClearKey: return "key Clear";
    case kDigitKey: return "key " + std::to_string(data & ~kDigitFlag);
    case kLetterS: return "key S";
    default: {
      char text[32];
      std::snprintf(text, sizeof text, "event 0x%x", unsigned(code));
      return text;
    }
  }
}

const char* wordsFor(ImageRefusal why) {
  switch (why) {
    case ImageRefusal::none: return "";
    case ImageRefusal::missing: return "it is missing";
    case ImageRefusal::badHeader: return "its header is damaged";
    case ImageRefusal::badFormat: return "it has another format";
    case ImageRefusal::badColorTable: return "its colour table is missing or damaged";
    case ImageRefusal::tooBig: return "it is too big for the image memory";
    case ImageRefusal::cutShort: return "it is cut short";
    case ImageRefusal::badData: return "its pixels are damaged";
  }
  return "";
}

}  // namespace

RunWatch::RunWatch(PageRun& r, Timeline& t, MemoryMeter& m) : run(r), timeline(t), memory(m) {}

uint64_t RunWatch::add(TimelineKind kind, std::string text, const DrawCost& cost) {
  if (opening == 0) opening = timeline.beginOpening();
  TimelineRow row;
  row.opening = opening;
  row.time = run.player().clock;
  row.kind = kind;
  row.depth = int(open.size());
  row.text = shortened(std::move(text));
  row.cost = cost;
  return timeline.add(std::move(row));
}

void RunWatch::begin(TimelineKind kind, std::string text) {
  const uint64_t number = add(kind, std::move(text));
  timeline.change(number)->isOpen = true;
  open.push_back({number, costSoFar()});
}

// `text` goes behind what the row says.
void RunWatch::end(std::string text) {
  if (open.empty()) return;  // it began before anybody looked
  const Open ended = open.back();
  open.pop_back();
  TimelineRow* row = timeline.change(ended.row);
  if (!row) return;
  row->isOpen = false;
  row->cost = costSoFar() - ended.before;
  row->text = shortened(row->text + text);
}

std::string RunWatch::nameOf(WidgetId id) const {
  const auto found = names.find(id);
  return id == 0 ? "nobody" : found == names.end() ? "the screen" : found->second;
}

// ---- pages and widgets

void RunWatch::stepBegun(uint32_t) {
  if (!std::exchange(hasStepped, true)) memory.begin();
}

void RunWatch::stepEnded(uint32_t time, const DrawCost&) { memory.sample(run.engine(), time, names.size()); }

void RunWatch::measureScript() {
  if (hasStepped) memory.sampleScript(run.engine());
}

void RunWatch::pageLoading(WidgetId, std::string_view name) { begin(TimelineKind::load, "page " + fileOf(name)); }

void RunWatch::pageLoaded(WidgetId, std::string_view, bool loaded) { end(loaded ? "" : ": not loaded"); }

void RunWatch::pageUnloaded(WidgetId, std::string_view name) {
  add(TimelineKind::load, "page " + fileOf(name) + " has gone");
}

void RunWatch::widgetMade(const WidgetMade& made) {
  names[made.id] = !made.name.empty()   ? std::string(made.name)
                   : !made.type.empty() ? "a " + std::string(made.type)
                                        : "a box";
}

void RunWatch::widgetGone(WidgetId id) { names.erase(id); }

void RunWatch::focusMoved(WidgetId, WidgetId, WidgetId to) { add(TimelineKind::focus, "to " + nameOf(to)); }

// ---- events, scripts, timers

void RunWatch::eventBegun(uint32_t code, uint32_t data, bool posted) {
  begin(TimelineKind::event, eventName(code, data) + (posted ? "" : ", sent by a script"));
}

void RunWatch::eventDelivered(const EventDelivery& event) {
  if (event.byHandler) return end(": taken by a handler of " + nameOf(event.consumer));
  end(event.consumer == 0 ? ": nobody wants it" : ": taken by " + nameOf(event.consumer));
}

// A script's timer is there as the script that it runs.
void RunWatch::timerFired(const TimerIdentity& timer) {
  if (timer.kind == TimerKind::timeout) add(TimelineKind::timer, "timeout of " + nameOf(timer.widget));
  if (timer.kind == TimerKind::glyphs) add(TimelineKind::timer, "glyphs in advance");
}

std::string RunWatch::wordsOf(const ScriptRun& script) const {
  switch (script.kind) {
    case ScriptKind::hook: return script.hook + " of " + nameOf(script.target);
    case ScriptKind::file: return "file " + fileOf(script.name);
    case ScriptKind::observer:
    case ScriptKind::handler:
      return (script.kind == ScriptKind::observer ? "observer of " : "handler of ") + nameOf(script.target) +
             (script.name.empty() ? "" : ": " + script.name);
    case ScriptKind::timer: return script.name.empty() ? "a function without a name" : script.name;
    case ScriptKind::console: return "console: " + script.name;
  }
  return "";
}

void RunWatch::scriptEntered(const ScriptRun& script) {
  begin(script.kind == ScriptKind::timer ? TimelineKind::timer : TimelineKind::script, wordsOf(script));
  measureScript();
}

// The message has been logged before; it becomes the error's row.
void RunWatch::scriptLeft(const ScriptRun& script, bool failed) {
  measureScript();
  const uint64_t began = open.empty() ? timeline.first() : open.back().row;
  TimelineRow* error = failed && errorRow > began ? timeline.change(errorRow) : nullptr;
  if (error) {
    error->kind = TimelineKind::error;
  } else if (failed) {
    add(TimelineKind::error, wordsOf(script) + " has failed");
  }
  end("");
}

void RunWatch::lineLogged(std::string_view line) {
  const uint64_t number = add(TimelineKind::log, std::string(line));
  if (line.starts_with(kScriptError)) errorRow = number;
  measureScript();
}

// ---- drawing

void RunWatch::drawn(const Drawing& d) {
  const Bounds& r = d.rect;
  add(TimelineKind::draw,
      nameOf(d.widget) + "  " + std::to_string(r.x) + " " + std::to_string(r.y) + "  " + std::to_string(r.w) + "x" +
          std::to_string(r.h),
      d.cost);
}

void RunWatch::swapped() {
  add(TimelineKind::swap, "the screen shows it", costSoFar() - std::exchange(atSwap, costSoFar()));
}

void RunWatch::imageLoaded(std::string_view name, uint32_t width, uint32_t height, uint32_t bytes) {
  add(TimelineKind::picture, std::string(name) + " read: " + std::to_string(width) + "x" + std::to_string(height) +
                                 ", " + std::to_string(bytes) + " bytes");
  memory.imageLoaded(name);
}

void RunWatch::imageRefused(std::string_view name, ImageRefusal why) {
  add(TimelineKind::picture, std::string(name) + " refused: " + wordsFor(why));
}

void RunWatch::imageThrownOut(std::string_view name, uint32_t bytes) {
  add(TimelineKind::picture, std::string(name) + " thrown out: " + std::to_string(bytes) + " bytes");
  memory.imageThrownOut(run.player().clock, name, bytes);
}

void RunWatch::fontOpened(std::string_view file, bool found) {
  add(TimelineKind::load, "font " + fileOf(file) + (found ? "" : ": missing"));
}

void RunWatch::glyphsCleared() { add(TimelineKind::picture, "the glyph cache was emptied"); }
