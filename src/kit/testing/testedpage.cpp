#include "kit/testing/testedpage.h"

#include <algorithm>

#include "bob/bob.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "kit/run/longtext.h"

void TestedPage::act(const PageAction& action) {
  run.act(action);
  history.push_back(action);
}

void TestedPage::takeLog() {
  unseen.append(run.log(), logTaken);
  logTaken = run.log().size();
}

TestedPage::Answer TestedPage::evaluate(const std::string& expression) {
  takeLog();
  const size_t complaints = run.complaints().size();
  const size_t end = expression.find_last_not_of(" \t\n");
  const bool ended = end != std::string::npos && (expression[end] == ';' || expression[end] == '}');
  act({PageAction::eval, ended ? expression : expression + ";"});
  std::string answer = run.log().substr(logTaken);
  logTaken = run.log().size();
  const bool failed = run.complaints().size() > complaints;
  if (complaintsTaken == complaints) complaintsTaken = run.complaints().size();
  while (answer.ends_with('\n') || answer.ends_with('\r')) answer.pop_back();
  const size_t arrow = answer.rfind("--> ");
  if (failed || arrow == std::string::npos) return {false, answer};
  return {true, answer.substr(arrow + 4)};
}

std::vector<std::string> TestedPage::newLines() {
  takeLog();
  std::vector<std::string> lines = linesOf(unseen);
  unseen.clear();
  for (std::string& line : lines)
    while (line.ends_with('\r')) line.pop_back();
  std::erase_if(lines, [](const std::string& line) { return line.empty() || !isComplaint(line); });
  return lines;
}

std::vector<std::string> TestedPage::newComplaints() {
  if (run.complaints().size() <= complaintsTaken) return {};
  std::vector<std::string> all = run.complaintsWithPlaces();
  all.erase(all.begin(), all.begin() + std::ptrdiff_t(complaintsTaken));
  complaintsTaken += all.size();
  return all;
}

std::optional<WidgetView> TestedPage::widget(const std::string& name) {
  const size_t slash = name.rfind('/');
  const std::string own = slash == std::string::npos ? name : name.substr(slash + 1);
  const std::vector<WidgetView> all = inspectWidgets(run.engine());
  std::optional<WidgetView> frame;
  if (slash != std::string::npos) {
    frame = widget(name.substr(0, slash));
    if (!frame) return std::nullopt;
  }
  for (const WidgetView& each : all)
    if (each.name == own && (!frame || each.frame == frame->id)) return each;
  return std::nullopt;
}

std::optional<std::string> TestedPage::focus() {
  const std::vector<WidgetView> all = inspectWidgets(run.engine());
  std::string path;
  for (WidgetId frame = all.empty() ? 0 : all.front().id;;) {
    const auto focused = std::find_if(all.begin(), all.end(),
                                      [&](const WidgetView& each) { return each.frame == frame && each.focused; });
    if (focused == all.end()) break;
    path += (path.empty() ? "" : "/") + (focused->name.empty() ? "?" : focused->name);
    if (focused->kind != WidgetKind::frame) break;
    frame = focused->id;
  }
  if (path.empty()) return std::nullopt;
  return path;
}

HeapView TestedPage::heap() {
  const EngineScope here(run.engine());
  if (BobInterp* interp = scriptInterp()) bobCollect(interp);
  return inspectHeap(run.engine());
}

size_t TestedPage::imageCacheBytes() {
  size_t bytes = 0;
  for (const CachedImageView& image : inspectImageCache(run.engine()).entries) bytes += image.bytes;
  return bytes;
}

Picture TestedPage::screen() {
  const auto& surface = run.player().shell.screen;
  return {uint32_t(surface.screenWidth), uint32_t(surface.screenHeight), surface.dibBits};
}
