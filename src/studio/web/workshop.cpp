// The authoring kit and a page in its author's hands as a module for JavaScript. browser/playground/workshopworker.js
// calls it.
//
// Sources lie in the module's own file system. What a function has to tell is JSON; it lasts until the next call.
#include <emscripten.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "gfx/foundation/hsdebug.h"
#include "kit/lsp/lspserver.h"
#include "kit/project/build.h"
#include "kit/project/pack.h"
#include "studio/editor/scripterrors.h"
#include "studio/inspector/attributelines.h"
#include "studio/inspector/focusmap.h"
#include "studio/inspector/unseen.h"
#include "studio/inspector/widgettree.h"
#include "studio/session/session.h"
#include "studio/timeline/runwatch.h"

using nlohmann::json;

namespace {

constexpr double kScriptSeconds = 2;       // of one key, one line or one millisecond
constexpr size_t kMostTimelineRows = 300;  // reported at once, the latest

const char* kept(std::string text) {
  static std::string last;
  last = std::move(text);
  return last.c_str();
}

// Texts of pages may have any bytes.
const char* kept(const json& value) { return kept(value.dump(-1, ' ', false, json::error_handler_t::replace)); }

// The severity says what a text may begin with.
std::string_view withoutWarning(std::string_view text) {
  constexpr std::string_view kWarning = "warning: ";
  return text.starts_with(kWarning) ? text.substr(kWarning.size()) : text;
}

json jsonOf(const KitMessage& message, const char* severity) {
  json uses = json::array();
  for (const KitMessage& use : message.uses) uses.push_back(use.whole());
  return {{"file", message.file},
          {"line", message.line},
          {"text", withoutWarning(message.text)},
          {"severity", severity},
          {"uses", uses}};
}

json jsonOf(const std::vector<KitMessage>& messages, const char* severity) {
  json all = json::array();
  for (const KitMessage& message : messages) all.push_back(jsonOf(message, severity));
  return all;
}

json jsonOf(const Bounds& b) { return {b.x, b.y, b.w, b.h}; }

json jsonOf(const std::optional<YamlPlace>& place) {
  return place && place->file ? json{{"file", *place->file}, {"line", place->line}} : json();
}

json jsonOf(const FocusPoint& tail, const FocusPoint& head) { return {tail.x, tail.y, head.x, head.y}; }

// To draw: what the direction keys reach and what they don't, and the arrows between them.
json jsonOf(const FocusMap& map) {
  json stops = json::array(), arrows = json::array(), dead = json::array();
  for (const FocusStop& stop : map.stops) {
    const bool isReached = stop.reach == FocusReach::arrows;
    if (stop.isHidden && !isReached) continue;  // it may lie where another is, and isn't meant to be reached now
    stops.push_back({{"bounds", jsonOf(stop.bounds)}, {"isReached", isReached}});
  }
  for (const FocusArrow& arrow : map.arrows)
    if (arrow.state == ArrowState::followed) arrows.push_back(jsonOf(arrow.tail, arrow.head));
  for (const DeadLink& link : map.deadLinks)
    if (!link.isHidden) dead.push_back(jsonOf(link.tail, link.head));
  return {{"summary", summaryOf(map)}, {"stops", stops}, {"arrows", arrows}, {"deadLinks", dead}};
}

void append(json& to, const json& more) { to.insert(to.end(), more.begin(), more.end()); }

// The page that is shown.
struct Stage {
  Timeline timeline;
  MemoryMeter memory;
  std::unique_ptr<Session> session;  // which writes into them
  uint64_t opening = 0;
  size_t logRead = 0, complaintsRead = 0;
  std::vector<uint32_t> shown, pixels;

  PageRun* run() { return session ? session->run() : nullptr; }

  json opened(bool well) {
    json messages = jsonOf(session->errors(), "error");
    append(messages, jsonOf(session->warnings(), "warning"));
    json files = json::array();
    for (const auto& file : session->dependencies()) files.push_back(file.string());
    return {{"opened", well}, {"messages", messages}, {"dependencies", files}};
  }

  void noteOpening() {
    if (opening == session->openings()) return;
    opening = session->openings();
    logRead = complaintsRead = 0;
  }
};

Stage& stage() {
  static Stage& only = *new Stage;
  return only;
}

struct ChangedRows {
  int x = 0, y = 0, w = 0, h = 0;
  const uint32_t* pixels = nullptr;
};

// Answers an editor here are collected until somebody takes them.
class Mailbox : public RpcSender {
 public:
  void send(const json& message) override { messages.push_back(message); }
  json take() { return std::exchange(messages, json::array()); }

 private:
  json messages = json::array();
};

struct Language {
  Mailbox mailbox;
  LspServer server{mailbox, Diagnoser::Works::whenCalled};
};

Language& language() {
  static Language& only = *new Language;
  return only;
}

}  // namespace

extern "C" {

EMSCRIPTEN_KEEPALIVE void workshopStart() {
  hsSetHaltProc([] {
    std::fprintf(stderr, "%s\n", hsReportText());
    std::abort();
  });
}

// ---- the page that is shown

// Opens a page or a page source by its full name, as for the first time.
EMSCRIPTEN_KEEPALIVE const char* stageOpen(const char* page) {
  SessionOptions options;
  options.lines = true;
  options.limitSeconds = kScriptSeconds;
  stage().session.reset();  // before what it writes into
  stage() = Stage();
  options.prepare = [](PageRun& run) { run.watch(std::make_unique<RunWatch>(run, stage().timeline, stage().memory)); };
  stage().session = std::make_unique<Session>(page, options);
  const bool well = stage().session->restart();
  stage().noteOpening();
  return kept(stage().opened(well));
}

// Opens it anew, from the sources as they are now, with what was pressed and typed so far.
EMSCRIPTEN_KEEPALIVE const char* stageReload() {
  if (!stage().session) return kept(json{{"opened", false}});
  const bool well = stage().session->reload();
  stage().noteOpening();
  return kept(stage().opened(well));
}

EMSCRIPTEN_KEEPALIVE void stageKey(const char* name) {
  if (stage().run()) stage().session->act({PageAction::key, name});
}

EMSCRIPTEN_KEEPALIVE void stageType(const char* line) {
  if (stage().run()) stage().session->act({PageAction::eval, line});
}

// Lets time pass. Returns the milliseconds until the next timer, or -1 for none.
EMSCRIPTEN_KEEPALIVE int stagePass(uint32_t milliseconds) {
  PageRun* run = stage().run();
  if (!run) return -1;
  if (milliseconds > 0) stage().session->pass(milliseconds);
  if (!run->stopped().empty()) return -1;
  const auto due = run->player().shell.nextTimer();
  const uint32_t now = run->player().clock;
  return !due ? -1 : *due <= now ? 0 : int(std::min<uint32_t>(*due - now, INT32_MAX));
}

// The rows that have changed since the last call, as bytes R G B A; w is 0 when none has.
EMSCRIPTEN_KEEPALIVE const void* stageFrame() {
  static ChangedRows frame;
  frame = {};
  PageRun* run = stage().run();
  if (!run) return &frame;
  const ScreenSurface& screen = run->player().shell.screen;
  const size_t width = size_t(screen.screenWidth), height = size_t(screen.screenHeight);
  const std::vector<uint32_t>& now = screen.dibBits;
  std::vector<uint32_t>& before = stage().shown;
  const bool all = before.size() != now.size();
  const auto differs = [&](size_t row) {
    const auto at = std::ptrdiff_t(row * width);
    return all || !std::equal(now.begin() + at, now.begin() + at + std::ptrdiff_t(width), before.begin() + at);
  };
  size_t top = 0, bottom = height;
  while (top < height && !differs(top)) ++top;
  while (bottom > top && !differs(bottom - 1)) --bottom;
  if (top == bottom) return &frame;
  before = now;
  std::vector<uint32_t>& pixels = stage().pixels;
  pixels.assign(now.begin() + std::ptrdiff_t(top * width), now.begin() + std::ptrdiff_t(bottom * width));
  for (uint32_t& p : pixels) p = 0xFF000000 | (p & 0xFF) << 16 | (p & 0xFF00) | (p >> 16 & 0xFF);
  frame = {0, int(top), int(width), int(bottom - top), pixels.data()};
  return &frame;
}

// What the console has shown since the last call, errors of scripts with their places among it, and what stopped the
// page: {log, stopped, errors}.
EMSCRIPTEN_KEEPALIVE const char* stageNews() {
  PageRun* run = stage().run();
  if (!run) return kept(json{{"log", ""}, {"stopped", ""}, {"errors", json::array()}});
  const std::string_view log = run->log();
  const std::string news = run->player().withPlaces(log.substr(std::min(stage().logRead, log.size())));
  stage().logRead = log.size();
  std::vector<std::string> complaints = run->complaintsWithPlaces();
  const size_t known = std::min(std::exchange(stage().complaintsRead, complaints.size()), complaints.size());
  complaints.erase(complaints.begin(), complaints.begin() + std::ptrdiff_t(known));
  return kept(json{{"log", news}, {"stopped", run->stopped()}, {"errors", jsonOf(scriptErrors(complaints), "error")}});
}

// After a stop: lets the page's scripts run again.
EMSCRIPTEN_KEEPALIVE void stageGoOn() {
  if (PageRun* run = stage().run()) run->player().goOn();
}

// The widgets of the running page, where the keys lead, and all attributes of the widget of that path, if there is one:
// {widgets, focus, attributes}.
EMSCRIPTEN_KEEPALIVE const char* stageInspect(const char* path) {
  PageRun* run = stage().run();
  json widgets = json::array(), attributes = json::array();
  if (!run) return kept(json{{"widgets", widgets}, {"focus", jsonOf(FocusMap())}, {"attributes", attributes}});
  WidgetSources sources(*run);
  for (const TreeRow& row : widgetTree(run->engine())) {
    json why = json::array();
    if (row.notSeen)
      for (const UnseenSentence& sentence : unseenSentences(run->engine(), row.id)) why.push_back(sentence.text);
    widgets.push_back({{"depth", row.depth},
                       {"label", row.label},
                       {"path", row.path},
                       {"bounds", jsonOf(row.bounds)},
                       {"hidden", row.hidden},
                       {"focused", row.focused},
                       {"notSeen", row.notSeen},
                       {"why", why}});
    if (row.path != path) continue;
    for (const AttributeLine& line : attributeLines(*run, sources, row.id))
      attributes.push_back({{"name", line.name},
                            {"value", line.value},
                            {"from", line.from},
                            {"place", jsonOf(line.place)},
                            {"help", line.help}});
  }
  return kept(json{{"widgets", widgets}, {"focus", jsonOf(focusMap(*run, sources))}, {"attributes", attributes}});
}

// What happened on the page, the latest rows that have this text in them, whatever the case of its letters: [{time,
// kind, depth, text, cost}, ...].
EMSCRIPTEN_KEEPALIVE const char* stageTimeline(const char* text) {
  TimelineFilter filter;
  filter.text = text;
  const std::vector<uint64_t> numbers = stage().timeline.rowsThat(filter);
  json rows = json::array();
  for (size_t i = numbers.size() - std::min(numbers.size(), kMostTimelineRows); i < numbers.size(); ++i) {
    const TimelineRow& row = stage().timeline.row(numbers[i]);
    rows.push_back({{"time", timelineTime(row.time)},
                    {"kind", timelineKindName(row.kind)},
                    {"depth", row.depth},
                    {"text", row.text},
                    {"cost", timelineCost(row.cost)}});
  }
  return kept(rows);
}

// ---- what editors ask

// A message of the Language Server Protocol. Answers those that it is answered with.
EMSCRIPTEN_KEEPALIVE const char* languageTake(const char* message) {
  const json parsed = json::parse(message, nullptr, false);
  language().server.serve(parsed.is_discarded() ? json() : parsed);
  return kept(language().mailbox.take());
}

// Diagnoses what is due: {messages, wait}, the milliseconds after which there is more to do, or -1.
EMSCRIPTEN_KEEPALIVE const char* languageDiagnose() {
  const auto wait = language().server.diagnoseNow();
  return kept(json{{"messages", language().mailbox.take()}, {"wait", wait ? int64_t(wait->count()) : -1}});
}

// ---- the project as a whole

// Builds the project of that file and packs it for the player into `archive`: {messages, packed}.
EMSCRIPTEN_KEEPALIVE const char* projectPack(const char* file, const char* archive) {
  json messages = json::array();
  try {
    const Project project = readProject(file);
    BuildOptions options;
    options.jobs = 1;
    options.warn = [&](const KitMessage& warning) { messages.push_back(jsonOf(warning, "warning")); };
    const BuildReport built = buildProject(project, options);
    writePack(project, planPack(project, built), archive);
    return kept(json{{"messages", messages}, {"packed", true}});
  } catch (const KitError& e) {
    append(messages, jsonOf(e.messages, "error"));
  }
  return kept(json{{"messages", messages}, {"packed", false}});
}

}  // extern "C"
