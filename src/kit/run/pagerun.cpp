#include "kit/run/pagerun.h"

#include <filesystem>
#include <new>

#include "gfx/text/hsgscalercontextt2k.h"
#include "kit/files.h"
#include "kit/fonts/machinefonts.h"
#include "kit/project/project.h"

namespace fs = std::filesystem;

namespace {

// Beside the page's own folder; the page itself, too, which may be a link.
std::vector<fs::path> readableAround(const std::string& page) {
  const std::vector<std::string> fonts = MachineFonts::folders();
  std::vector<fs::path> readable(fonts.begin(), fonts.end());
  readable.push_back(page);
  const std::string project = findProject(fs::absolute(page).parent_path().generic_string());
  if (!project.empty()) readable.push_back(fs::path(project).parent_path());
  return readable;
}

FileAccess accessOf(const RunLimits& limits) {
  FileAccess access;
  access.readAnywhere = access.writeAnywhere = limits.reach == FileReach::all;
  if (!access.readAnywhere) {
    access.largest = kLargestFile;
    access.mostWritten = kMostWritten;
  }
  access.scriptsWriteFiles = !limits.readOnly;
  access.scriptsOpenFiles = limits.reach != FileReach::none;
  return access;
}

}  // namespace

FileAccess accessOf(const std::string& page, const RunLimits& limits) {
  FileAccess access = accessOf(limits);
  access.readable = readableAround(page);
  return access;
}

ThreadFolders foldersOf(const std::string& page, const RunLimits& limits) {
  if (limits.reach == FileReach::all) return {std::nullopt, {"/"}};
  ThreadFolders folders{readableAround(page), {}};
  (limits.readOnly ? *folders.readable : folders.writable).push_back(fs::absolute(page).parent_path());
  return folders;
}

ThreadFolders foldersWithSources(const std::string& page, const RunLimits& limits) {
  ThreadFolders folders = foldersOf(page, limits);
  folders.readable.reset();
  return folders;
}

PageRun::PageRun(const PageRunOptions& options) : lines(options.lines), desktop(options) {
  desktop.shell.access = accessOf(options);
  if (options.written) desktop.shell.writtenByScripts = options.written;
  if (!desktop.start()) throw std::bad_alloc();
  desktop.watchScripts(lines ? &places : nullptr);
  desktop.settle();
  if (options.files) use(*options.files);
}

void PageRun::use(MadeFiles& f) {
  files = &f;
  desktop.makeFile = [this](const fs::path& path) -> const std::string* {
    const MadeFile* file = files->find(path);
    if (!file) return nullptr;
    if (lines) places.add(file->lines);
    if (!file->places.empty()) pagePlaces[path.generic_string()] = file->places;
    return &file->bytes;
  };
}

PageRun::~PageRun() { desktop.shell.engine.observer = nullptr; }

bool PageRun::load(const std::string& path, const KitWarn& warn) {
  if (files) return loadMade(path, warn);
  return isPageSource(path) ? load(path, compile(path, warn)) : loadFile(path);
}

// A page with errors in it, or in what it shows first, isn't shown as far as it goes.
bool PageRun::loadMade(const std::string& path, const KitWarn& warn) {
  const auto throwErrors = [&] {
    const std::vector<KitMessage> errors = files->errors();
    if (!errors.empty()) throw BuildError(errors, files->sources());
  };
  const std::string page = files->pageOf(path);
  files->find(page);
  throwErrors();
  const bool loaded = loadFile(page);
  if (warn)
    for (const KitMessage& warning : files->warnings()) warn(warning);
  throwErrors();
  return loaded;
}

bool PageRun::loadFile(const std::string& page) {
  desktop.shell.access.readable = readableAround(page);
  desktop.beginActivity();
  if (!desktop.shell.loadPage(fs::absolute(page).generic_string())) return false;
  desktop.settle();
  return true;
}

BuiltPage PageRun::compile(const std::string& source, const KitWarn& warn) {
  PageSourceOptions options;
  options.lines = lines;
  try {
    return compilePage(source, warn, options);
  } catch (const BuildError& e) {
    sources = e.inputs;
    throw;
  }
}

// Under the name that the page would have if it were built beside its source.
bool PageRun::load(const std::string& source, const BuiltPage& built) {
  places.add(built.lines);
  const auto keep = [&](const fs::path& path, std::string bytes) {
    desktop.shell.filesInMemory[fs::absolute(path).lexically_normal()] = std::move(bytes);
  };
  const fs::path page = fs::path(source).replace_extension(".kpg");
  keep(page, {built.bytes.begin(), built.bytes.end()});
  for (const ScriptFile& script : built.scriptFiles) {
    places.add(script.lines);
    keep(page.parent_path() / script.name, {script.bytes.begin(), script.bytes.end()});
  }
  sources = built.sources;
  pagePlaces[fs::absolute(page).lexically_normal().generic_string()] = built.places;
  return loadFile(page.generic_string());
}

const PagePlaces* PageRun::placesOf(const std::string& page) const {
  const auto found = pagePlaces.find(page);
  return found == pagePlaces.end() ? nullptr : &found->second;
}

void PageRun::act(const PageAction& action) {
  if (!stopped().empty()) return;
  desktop.beginActivity();
  switch (action.kind) {
    case PageAction::key: desktop.key(action.argument); return desktop.settle();
    case PageAction::wait:
      for (unsigned long left = std::stoul(action.argument); left > 0 && stopped().empty(); --left) {
        desktop.beginActivity();
        desktop.wait(1);
      }
      return;
    case PageAction::eval: desktop.typeLine(action.argument); return desktop.settle();
  }
}

std::vector<std::string> PageRun::complaintsWithPlaces() const {
  std::vector<std::string> texts;
  for (const std::string_view complaint : complaints()) texts.push_back(desktop.withPlaces(complaint));
  return texts;
}

KitError PageRun::refusal(const std::string& page) const {
  std::string all;
  for (const std::string& complaint : complaintsWithPlaces()) all += complaint;
  while (all.ends_with('\n')) all.pop_back();
  return all.empty() ? KitError(page, "the player doesn't load it, and doesn't say why") : KitError(all);
}

std::vector<std::string> PageRun::inputs() const {
  std::vector<std::string> all = sourcesRead();
  for (const fs::path& path : desktop.filesRead()) all.push_back(path.generic_string());
  return all;
}

std::vector<std::string> PageRun::dependencies() const {
  std::vector<std::string> all = inputs();
  for (const fs::path& path : desktop.filesMissing()) all.push_back(path.generic_string());
  return all;
}

std::vector<std::string> PageRun::unusableFonts() {
  const EngineScope here(desktop.shell.engine);
  std::vector<std::string> names;
  for (const FontEntry& font : desktop.shell.engine.fonts.all())
    if (!hsFontOpens(font.scalerFont)) names.push_back(font.name);
  return names;
}

void PageRun::watch(std::unique_ptr<EngineObserver> o) {
  desktop.shell.engine.observer = o.get();
  observer = std::move(o);
}

void PageRun::trace(BobTracer& tracer) {
  const EngineScope here(desktop.shell.engine);
  if (BobInterp* interp = scriptInterp()) bobTrace(interp, &tracer);
}

const BobCodeLines* PageRun::linesOf(BobValue code) {
  if (!lines) return nullptr;
  const EngineScope here(desktop.shell.engine);
  return places.linesOf(scriptInterp(), code, desktop.filesRead());
}

PagePicture PageRun::take() {
  auto& screen = desktop.shell.screen;
  return {screen.screenWidth, screen.screenHeight, screen.take()};
}
