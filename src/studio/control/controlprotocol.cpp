#include "studio/control/controlprotocol.h"

#include <exception>
#include <utility>

#include "engine/inspect.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/json.h"
#include "kit/pictures/png.h"
#include "kit/source/base64.h"

namespace {

std::string answerOf(const char* key, std::string_view text) {
  JsonWriter json(JsonForm::oneLine);
  json.beginObject();
  json.boolean("ok", true);
  if (key) json.string(key, text);
  json.endObject();
  return json.text();
}

std::string errorAnswer(std::string_view text) {
  JsonWriter json(JsonForm::oneLine);
  json.beginObject();
  json.string("error", text);
  json.endObject();
  return json.text();
}

void writeWidget(const WidgetView& w, JsonWriter* json) {
  json->beginObject();
  json->number("id", int64_t(w.id));
  json->number("parent", int64_t(w.parent));
  json->number("level", w.level);
  json->string("type", w.kind == WidgetKind::box ? "box" : widgetKindName(w.kind));
  json->string("name", w.name);
  json->number("x", w.bounds.x);
  json->number("y", w.bounds.y);
  json->number("width", w.bounds.w);
  json->number("height", w.bounds.h);
  if (w.focused) json->boolean("focused", true);
  if (w.contentHidden) json->boolean("hidden", true);
  if (!w.text.empty()) json->string("text", w.text);
  if (w.value) json->number("value", *w.value);
  if (w.selected) json->number("selected", int64_t(*w.selected));
  json->endObject();
}

std::string treeAnswer(Engine& engine) {
  JsonWriter json(JsonForm::oneLine);
  json.beginObject();
  json.boolean("ok", true);
  json.beginArray("tree");
  for (const WidgetView& widget : inspectWidgets(engine)) writeWidget(widget, &json);
  json.endArray();
  json.endObject();
  return json.text();
}

std::string joined(const std::vector<KitMessage>& messages) {
  std::string out;
  for (const KitMessage& message : messages) out += (out.empty() ? "" : "\n") + message.whole();
  return out;
}

}  // namespace

std::string ControlProtocol::answer(std::string_view line) {
  if (isAnswering) return errorAnswer("another request is being answered");
  isAnswering = true;
  std::string text;
  try {
    if (line.size() > kMostControlLine)
      throw KitError("the line has more than " + std::to_string(kMostControlLine) + " bytes");
    text = obey(readControlRequest(line));
  } catch (const std::exception& e) {
    text = errorAnswer(e.what());
  }
  isAnswering = false;
  return text;
}

std::optional<std::string> ControlProtocol::answerAmidst(std::string_view line) try {
  if (line.size() > kMostControlLine || readControlRequest(line).kind != ControlRequest::stop) return std::nullopt;
  if (stop)
    stop();
  else if (PageRun* run = session.run())
    run->player().interrupt();
  return answerOf(nullptr, "");
} catch (const std::exception&) {
  return std::nullopt;
}

std::string ControlProtocol::obey(const ControlRequest& request) {
  if (request.kind == ControlRequest::stop) return answerOf(nullptr, "");  // nothing runs
  if (request.kind == ControlRequest::reload) {
    reload ? reload() : void(session.reload());
    return session.errors().empty() ? answerOf(nullptr, "") : errorAnswer(joined(session.errors()));
  }
  if (!session.run())
    throw KitError("no page is open" + (session.errors().empty() ? "" : ": " + joined(session.errors())));
  switch (request.kind) {
    case ControlRequest::shot: return takeShot(request);
    case ControlRequest::tree: return treeAnswer(session.run()->engine());
    case ControlRequest::log: return answerOf("log", newLog());
    default: return act(request);
  }
}

std::string ControlProtocol::act(const ControlRequest& request) {
  PageRun& run = *session.run();
  if (!run.stopped().empty()) run.player().goOn();  // what was ended before is no reason to do nothing now
  const size_t logged = run.log().size();
  const PageAction::Kind kind = request.kind == ControlRequest::key    ? PageAction::key
                                : request.kind == ControlRequest::wait ? PageAction::wait
                                                                       : PageAction::eval;
  session.act({kind, request.argument});
  if (!run.stopped().empty()) return errorAnswer(run.stopped());
  return kind == PageAction::eval ? answerOf("output", run.log().substr(logged)) : answerOf(nullptr, "");
}

std::string ControlProtocol::takeShot(const ControlRequest& request) {
  RunDesktop& player = session.run()->player();
  const std::vector<uint8_t> png =
      encodePng(player.shell.screen.screenWidth, player.shell.screen.screenHeight, player.window());
  if (request.argument.empty())
    return answerOf("png", base64Encode({reinterpret_cast<const char*>(png.data()), png.size()}));
  refuseClashes({request.argument}, session.run()->inputs());
  writeFile(request.argument, png.data(), png.size());
  return answerOf(nullptr, "");
}

std::string ControlProtocol::newLog() {
  if (std::exchange(logOf, session.openings()) != session.openings()) logAnswered = 0;
  const std::string& log = session.run()->log();
  return log.substr(std::exchange(logAnswered, log.size()));
}
