#include "studio/inspector/widgetsources.h"

#include <algorithm>
#include <filesystem>

#include "kit/files.h"
#include "kit/project/build.h"
#include "kit/source/pagebuild.h"

namespace fs = std::filesystem;

namespace {

// The source that a built page is made from, if there is one.
struct PageOrigin {
  std::string source;
  PageSourceOptions options;
};

std::string sourceInProject(const Project& project, const fs::path& page) {
  std::error_code error;
  for (const ProjectName& name : project.pages) {
    const std::string output = outputPath(project, fs::path(name.text).replace_extension(".kpg").string());
    if (fs::equivalent(output, page, error)) return project.pathOf(name.text);
  }
  return "";
}

PageOrigin originOf(const fs::path& page) {
  PageOrigin origin;
  std::error_code error;
  for (const char* extension : {".yaml", ".yml"}) {
    const fs::path beside = fs::path(page).replace_extension(extension);
    if (fs::exists(beside, error)) origin.source = beside.string();
  }
  const std::string file = findProject(page.parent_path().string());
  if (file.empty()) return origin;
  const Project project = readProject(file);
  origin.options.strip = project.strip;
  if (origin.source.empty()) origin.source = sourceInProject(project, page);
  return origin;
}

// Nothing when the page was not built from what its source says now.
std::optional<BuiltPage> builtAgain(const fs::path& page) {
  try {
    const PageOrigin origin = originOf(page);
    if (origin.source.empty()) return std::nullopt;
    BuiltPage built = compilePage(origin.source, {}, origin.options);
    if (built.bytes == readFile(page.string())) return built;
  } catch (const KitError&) {
  }
  return std::nullopt;
}

bool isSamePlace(const YamlPlace& a, const YamlPlace& b) {
  return a.line == b.line && a.column == b.column && a.file && b.file && *a.file == *b.file;
}

std::string fullName(PageRun& run, std::string name) {
  std::replace(name.begin(), name.end(), '\\', '/');
  return fs::absolute(run.player().shell.folder / name).lexically_normal().string();
}

}  // namespace

WidgetSources::WidgetSources(PageRun& r) : run(r) { readTexts(run.sourcesRead()); }

// What can't be read any more has changed, and nobody asks for it.
void WidgetSources::readTexts(const std::vector<std::string>& files) {
  for (const std::string& file : files) try {
      const std::vector<uint8_t> bytes = readFile(file);
      texts.emplace(file, std::make_shared<const std::string>(bytes.begin(), bytes.end()));
    } catch (const KitError&) {
    }
}

const PagePlaces& WidgetSources::placesOf(const std::string& page) {
  if (const PagePlaces* known = run.placesOf(page)) return *known;
  const auto [found, isNew] = built.try_emplace(page);
  if (isNew)
    if (auto again = builtAgain(page)) {
      found->second = std::move(again->places);
      readTexts(again->sources);
    }
  return found->second;
}

std::optional<WidgetSource> WidgetSources::of(WidgetId id) {
  const auto widget = inspectWidget(run.engine(), id);
  if (!widget) return std::nullopt;
  for (const FrameView& frame : inspectFrames(run.engine())) {
    if (frame.id != widget->frame || frame.page.empty()) continue;
    const PagePlaces& all = placesOf(fullName(run, frame.page));
    const auto places = all.find(widget->record);
    if (places == all.end() || !places->second.object.file) return std::nullopt;
    WidgetSource source;
    source.places = places->second;
    const auto text = texts.find(*source.places.object.file);
    if (text == texts.end()) return std::nullopt;
    source.text = text->second;
    source.object = widget->isRoot ? ObjectKind::root : ObjectKind::widget;
    source.type = widgetKindName(widget->kind);
    source.isIndexed = frame.eightBit;
    source.given = widget->given;
    source.sharedBy = size_t(std::count_if(all.begin(), all.end(), [&](const auto& each) {
      return isSamePlace(each.second.object, source.places.object);
    }));
    return source;
  }
  return std::nullopt;
}

std::optional<YamlPlace> WidgetSources::placeOf(WidgetId id, const std::string& attribute) {
  const auto source = of(id);
  const YamlPlace* place = source ? findPlace(source->places, attribute) : nullptr;
  return place ? std::optional(*place) : std::nullopt;
}

const YamlPlace* findPlace(const ObjectPlaces& places, const std::string& attribute) {
  for (const ObjectPlaces::Attribute& each : places.attributes)
    if (each.name == attribute) return &each.place;
  return nullptr;
}

std::string shortPlace(const YamlPlace& place) {
  if (!place.file) return "";
  return fs::path(*place.file).filename().string() + ":" + std::to_string(place.line);
}
