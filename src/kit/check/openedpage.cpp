#include "kit/check/openedpage.h"

#include <algorithm>
#include <cstdlib>

#include "engine/base/hostfile.h"
#include "engine/engine.h"
#include "engine/inspect/walk.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "gfx/foundation/hsascii.h"
#include "platform/diskfiles.h"

namespace fs = std::filesystem;

namespace {

constexpr double kMostSeconds = 10;  // of processor time, for scripts that never end

PageRunOptions optionsOf(LiveFiles& files) {
  PageRunOptions options;
  options.lines = true;
  options.reach = FileReach::all;  // as the player does it
  options.readOnly = true;
  options.limitSeconds = kMostSeconds;
  options.limitMemory = kUsualMemory;
  options.files = &files;
  return options;
}

}  // namespace

OpenedPage::OpenedPage(const std::string& source) : files(source), run(optionsOf(files)) {
  files.begin();
  path = files.pageOf(source);
  folder = fs::path(path).parent_path();
  try {
    run.load(source);
  } catch (const KitError&) {
    // It is among the errors of the files.
  }
}

FileLook OpenedPage::look(const std::string& name) {
  std::string plain = name;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  const fs::path file = (folder / plain).lexically_normal();
  std::error_code error;
  if (files.find(file)) return {FileLook::exactly, name};
  if (fs::is_regular_file(file, error)) {
    const fs::path spelled = asSpelledOnDisk(file);
    if (spelled == file) return {FileLook::exactly, name};
    return {FileLook::ignoringCase, spelled.lexically_relative(folder).generic_string()};
  }
  const auto isEqual = [&](const fs::path& other) {
    return hsAsciiEqualIgnoringCase(other.string().c_str(), file.string().c_str());
  };
  const EngineScope here(engine());
  fs::path found = files.findIgnoringCase(file);
  if (found.empty() && openHostFile(name.c_str())) {
    const auto& read = run.player().filesRead();
    const auto known =
        std::find_if(read.begin(), read.end(), [&](const fs::path& f) { return isEqual(f.lexically_normal()); });
    if (known != read.end()) found = known->lexically_normal();
  }
  if (found.empty()) return {FileLook::nowhere, ""};
  return {FileLook::ignoringCase, found.lexically_relative(folder).generic_string()};
}

std::string OpenedPage::read(const std::string& name) {
  const EngineScope here(engine());
  const HostFilePtr file = openHostFile(name.c_str());
  const auto bytes = file ? readWhole(file.get()) : std::nullopt;
  return bytes ? std::string(bytes->begin(), bytes->end()) : "";
}

bool OpenedPage::resolves(std::string_view names) {
  const EngineScope here(engine());
  BobInterp* interp = scriptInterp();
  const Frame* top = engine().topFrame;
  if (!interp || !top || !top->scriptEnv) return false;
  bool found = false;
  const bool ended = bobTry(interp, [&] {
    BobLocal object(interp);
    for (size_t at = 0; at <= names.size();) {
      const size_t end = std::min(names.find('.', at), names.size());
      const BobValue key = bobIntern(interp, names.substr(at, end - at));  // symbols don't move
      BobValue value = kBobNil;
      found = at == 0 ? bobFindGlobal(interp, bobScopeObject(top->scriptEnv->scope), key, &value)
                      : bobGetProperty(interp, object, key, &value);
      if (!found) return;
      object.value = value;
      at = end + 1;
    }
  });
  return found || !ended;
}

std::vector<ScriptFailure> OpenedPage::scriptFailures() const {
  constexpr std::string_view kError = "Error: ", kPlace = " at ";
  std::vector<ScriptFailure> failures;
  for (const std::string& complaint : run.complaintsWithPlaces()) {
    if (!complaint.starts_with(kError)) continue;
    ScriptFailure failure;
    const size_t end = std::min(complaint.find('\n'), complaint.size());
    failure.text = complaint.substr(kError.size(), end - kError.size());
    const std::string happened = complaint.substr(std::min(end + 1, complaint.size()));
    std::string line = happened.substr(0, happened.find('\n'));
    const size_t place = line.rfind(kPlace);
    line.resize(std::min(line.find(" or ", place), line.size()));  // the same code may have been written twice
    const size_t colon = line.rfind(':');
    if (place != std::string::npos && colon != std::string::npos && colon > place) {
      failure.file = line.substr(place + kPlace.size(), colon - place - kPlace.size());
      failure.line = std::atoi(line.c_str() + colon + 1);
    }
    failures.push_back(std::move(failure));
  }
  if (run.stopped().empty()) return failures;
  if (failures.empty()) failures.emplace_back();
  failures.back().text.clear();  // of the error by which it was ended
  return failures;
}

std::vector<Widget*> OpenedPage::widgetsOf(const CheckedPage& page) {
  const Frame* top = engine().topFrame;
  if (!top || !top->pageData || top->pageName != fs::absolute(path).generic_string()) return {};
  std::vector<Widget*> made = walkWidgets(engine());
  std::erase_if(made, [&](const Widget* widget) { return frameOf(widget) != top; });
  if (made.size() != page.widgets.size()) return {};
  return made;
}
