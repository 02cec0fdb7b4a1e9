#include "studio/session/keptstate.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <type_traits>

#include "engine/events/value.h"

namespace {

// Calls `visit` with each named widget of the frame and of those inside it, and with the widget's name.
void eachWidget(Frame* frame, const std::string& path,
                const std::function<void(Widget*, const std::string& name)>& visit) {
  for (Widget* widget = frame->widgets; widget; widget = widget->nextInFrame) {
    if (!widget->name) continue;
    const std::string name = path + widget->name;
    visit(widget, name);
    if (auto* inner = dynamic_cast<Frame*>(widget)) eachWidget(inner, name + "/", visit);
  }
}

std::optional<KeptState::Value> valueOf(Widget* widget) {
  KuiValue value;
  if (!eventSendSimple(widget, kGetValue, 0, &value)) return std::nullopt;
  switch (value.kind) {
    case KuiValue::kInteger: return value.integer;
    case KuiValue::kString: return std::string(value.string);
    default: return std::nullopt;
  }
}

void setValue(Widget* widget, const KeptState::Value& wanted) {
  KuiValue value;
  if (const auto* text = std::get_if<std::string>(&wanted)) {
    value.kind = KuiValue::kString;
    value.string = *text;
  } else {
    value.kind = KuiValue::kInteger;
    value.integer = std::get<int32_t>(wanted);
  }
  eventSendSimple(widget, kSetValue, 0, &value);
}

void readFocus(Frame* frame, const std::string& path, KeptState* state) {
  state->focus[path] = frame->focus && frame->focus->name ? frame->focus->name : "";
}

// A hook can take the widgets away, so each is looked up by its name.
Frame* findFrame(Engine& engine, const std::string& path) {
  Frame* frame = engine.topFrame;
  for (size_t at = 0; frame && at < path.size();) {
    const size_t end = path.find('/', at);
    frame = dynamic_cast<Frame*>(frameFindWidget(frame, path.substr(at, end - at).c_str()));
    at = end + 1;
  }
  return frame;
}

Widget* findWidget(Engine& engine, const std::string& name) {
  const size_t slash = name.rfind('/') + 1;  // 0 when there is none
  Frame* frame = findFrame(engine, name.substr(0, slash));
  return frame ? frameFindWidget(frame, name.substr(slash).c_str()) : nullptr;
}

}  // namespace

KeptState readKeptState(Engine& engine) {
  const EngineScope here(engine);
  KeptState state;
  if (!engine.topFrame) return state;
  readFocus(engine.topFrame, "", &state);
  eachWidget(engine.topFrame, "", [&](Widget* widget, const std::string& name) {
    if (const auto value = valueOf(widget)) state.values.emplace(name, *value);
    if (auto* frame = dynamic_cast<Frame*>(widget)) readFocus(frame, name + "/", &state);
  });
  return state;
}

void restoreKeptState(Engine& engine, const KeptState& wanted) {
  const EngineScope here(engine);
  for (const auto& [name, value] : wanted.values) {
    Widget* widget = findWidget(engine, name);
    const auto now = widget ? valueOf(widget) : std::nullopt;
    if (now && now->index() == value.index() && *now != value) setValue(widget, value);
  }
  for (const auto& [path, name] : wanted.focus) {
    Frame* frame = findFrame(engine, path);
    Widget* widget = frame && !name.empty() ? frameFindWidget(frame, name.c_str()) : nullptr;
    if (widget && frame->focus != widget) widgetFocus(frame, widget);
  }
}

KeptState changedState(const KeptState& before, const KeptState& now) {
  KeptState changed;
  const auto keep = [](const auto& from, const auto& to, auto* out) {
    for (const auto& [name, value] : to) {
      const auto old = from.find(name);
      if (old == from.end() || old->second != value) out->emplace(name, value);
    }
  };
  keep(before.values, now.values, &changed.values);
  keep(before.focus, now.focus, &changed.focus);
  return changed;
}
