#include "kit/project/livefiles.h"

#include <algorithm>
#include <set>
#include <utility>

#include "gfx/foundation/hsascii.h"
#include "kit/files.h"
#include "kit/lines/bobmap.h"
#include "kit/pictures/convertpicture.h"
#include "kit/project/build.h"
#include "kit/project/contenthash.h"
#include "kit/source/pagebuild.h"
#include "platform/diskfiles.h"

namespace fs = std::filesystem;

namespace {

fs::path fullName(const fs::path& file) { return fs::absolute(file).lexically_normal(); }

std::vector<uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

// Endings of what is made, and of what it is made of.
struct Sources {
  const char* made;
  const char* of[2];
};
constexpr Sources kSourcesOf[] = {
    {".kpg", {".yaml", ".yml"}}, {".kpx", {".png", ".gif"}}, {".clut", {".png", ".gif"}}, {".bobo", {".bob", ".bob"}}};

std::string optionsOf(const BuildStep& step) {
  std::string options = step.options;
  for (const std::string& output : step.outputs) options += "\n" + output;
  return options;
}

// The first of these that is there and was changed after the made file, if that is there.
std::string newerSource(const fs::path& made, std::initializer_list<const char*> extensions) {
  std::error_code error;
  const auto builtAt = lastWriteTime(made, error);
  const bool isBuilt = !error;
  for (const char* extension : extensions) {
    const fs::path source = fs::path(made).replace_extension(extension);
    const auto savedAt = lastWriteTime(source, error);
    if (!error && (!isBuilt || savedAt > builtAt) && asSpelledOnDisk(source) == source) return source.generic_string();
  }
  return "";
}

}  // namespace

LiveFiles::LiveFiles(std::string p)
    : page(std::move(p)), projectFile(findProject(fs::path(page).parent_path().generic_string())) {}

void LiveFiles::begin() {
  ++run;
  asked.clear();
  lookedFor.clear();
  readPlan();
}

// Patterns may find other files than the last time, so the plan is made anew whenever it is looked at again.
void LiveFiles::readPlan() {
  if (projectFile.empty()) return;
  planErrors.clear();
  try {
    project = readProject(projectFile);
    plan = planProject(*project);
  } catch (const KitError& e) {
    planErrors = e.messages;
  }
}

std::string LiveFiles::pageOf(const std::string& source) {
  if (!isPageSource(source)) return fullName(source).generic_string();
  if (project)
    if (const std::string name = pageOfProject(*project, source); !name.empty())
      for (const BuildStep& step : plan.steps)
        if (step.name == pageStepName(name))
          return fullName(outputPath(*project, step.outputs.front())).generic_string();
  const fs::path beside = fullName(fs::path(source).replace_extension(".kpg"));
  const std::string key = "source " + source;
  made(key, [&](Made& m) { compile(source, beside, m); });
  owners[beside] = key;
  return beside.generic_string();
}

const MadeFile* LiveFiles::find(const fs::path& file) {
  if (const auto owner = owners.find(file); owner != owners.end()) {
    const Made& maker = all.at(owner->second);
    if (maker.lookedAt == run) {
      const auto known = maker.files.find(file);
      return known == maker.files.end() ? nullptr : &known->second;
    }
  }
  if (project)
    if (const MadeFile* found = findInProject(file)) return found;
  return findBeside(file);
}

fs::path LiveFiles::findIgnoringCase(const fs::path& file) {
  std::vector<fs::path> candidates;
  for (const BuildStep& step : plan.steps)
    for (const std::string& output : step.outputs) candidates.push_back(fullName(outputPath(*project, output)));
  std::vector<fs::path> folders{file.parent_path()};
  if (project)
    folders.push_back(
        project->pathOf(file.parent_path().lexically_relative(fullName(outputPath(*project, ""))).generic_string()));
  for (const fs::path& folder : folders) {
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
      const fs::path name = file.parent_path() / entry.path().filename();
      candidates.push_back(name);
      for (const auto& [ending, extensions] : kSourcesOf)
        if (std::find(std::begin(extensions), std::end(extensions), name.extension()) != std::end(extensions))
          candidates.push_back(fs::path(name).replace_extension(ending));
    }
  }
  std::sort(candidates.begin(), candidates.end());
  std::error_code error;
  for (const fs::path& candidate : candidates)
    if (hsAsciiEqualIgnoringCase(candidate.generic_string().c_str(), file.generic_string().c_str()) &&
        (find(candidate) || fs::is_regular_file(candidate, error)))
      return candidate;
  return {};
}

const MadeFile* LiveFiles::findInProject(const fs::path& file) {
  for (const BuildStep& step : plan.steps)
    for (const std::string& output : step.outputs)
      if (fullName(outputPath(*project, output)) == file)
        return fileOf(
            step.name, file, [&](Made& m) { runStep(step, m); }, optionsOf(step));
  // What a page names and nothing makes is copied from among the sources.
  const fs::path inOutput = file.lexically_relative(fullName(outputPath(*project, "")));
  if (inOutput.empty() || *inOutput.begin() == "..") return nullptr;
  lookFor(project->pathOf(inOutput.generic_string()));
  const std::string source = project->pathOf(inOutput.generic_string());
  std::error_code error;
  if (!fs::is_regular_file(source, error)) return nullptr;
  return fileOf("file " + source, file, [&](Made& m) {
    const std::vector<uint8_t> bytes = readFile(source);
    m.inputs.emplace_back(source, "");
    m.files[file].bytes.assign(bytes.begin(), bytes.end());
  });
}

// Whoever waits for saves has to know what isn't there yet, too.
void LiveFiles::lookFor(const fs::path& made) {
  lookedFor.insert(made.generic_string());
  for (const auto& [ending, extensions] : kSourcesOf)
    if (made.extension() == ending)
      for (const char* extension : extensions)
        lookedFor.insert(fs::path(made).replace_extension(extension).generic_string());
}

const MadeFile* LiveFiles::findBeside(const fs::path& file) {
  lookFor(file);
  if (file.extension() == ".kpg") {
    const std::string source = newerSource(file, {".yaml", ".yml"});
    if (source.empty() || !isPageSource(source)) return nullptr;
    return fileOf("source " + source, file, [&](Made& m) { compile(source, file, m); });
  }
  if (file.extension() != ".kpx" && file.extension() != ".clut") return nullptr;
  const std::string source = newerSource(file, {".png", ".gif"});
  if (source.empty()) return nullptr;
  return fileOf("picture " + source, file, [&](Made& m) {
    const fs::path kpx = fs::path(file).replace_extension(".kpx");
    m.inputs.emplace_back(source, "");
    // Names count from the page's folder.
    PictureOptions options;
    options.clutName =
        fs::path(ownClutName(kpx.generic_string())).lexically_relative(fullName(page).parent_path()).generic_string();
    ConvertedPicture picture = pictureForPlayer(source, kpx.generic_string(), options);
    m.files[kpx].bytes.assign(picture.kpx.begin(), picture.kpx.end());
    m.files[ownClutName(kpx.generic_string())].bytes.assign(picture.ownClut.begin(), picture.ownClut.end());
  });
}

// ---- making, and keeping what was made

const MadeFile* LiveFiles::fileOf(const std::string& key, const fs::path& file, const Maker& make,
                                  const std::string& options) {
  const Made& m = made(key, make, options);
  const auto found = m.files.find(file);
  return found == m.files.end() ? nullptr : &found->second;
}

const LiveFiles::Made& LiveFiles::made(const std::string& key, const Maker& make, const std::string& options) {
  Made& m = all[key];
  if (m.lookedAt == run) return m;
  const bool isNew = m.lookedAt == 0;
  m.lookedAt = run;
  asked.push_back(key);
  if (!isNew && m.options == options && isCurrent(m)) return m;
  m.options = options;
  m.files.clear();
  m.inputs.clear();
  m.errors.clear();
  m.warnings.clear();
  try {
    make(m);
  } catch (const BuildError& e) {
    m.errors = e.messages;
    for (const std::string& input : e.inputs) m.inputs.emplace_back(input, "");
  } catch (const KitError& e) {
    m.errors = e.messages;
  }
  for (auto& [input, hash] : m.inputs) hash = hashOf(input);
  for (const auto& [file, bytes] : m.files) owners[file] = key;
  return m;
}

bool LiveFiles::isCurrent(const Made& m) {
  return std::all_of(m.inputs.begin(), m.inputs.end(), [&](const auto& i) { return hashOf(i.first) == i.second; });
}

// An input may be a file that is made itself, such as the table of a picture.
std::string LiveFiles::hashOf(const std::string& input) {
  if (project)
    if (const MadeFile* file = findInProject(fullName(input))) return contentHash(bytesOf(file->bytes));
  const std::string* text = edited ? edited(input) : nullptr;
  return text ? contentHash(bytesOf(*text)) : fileHash(input);
}

std::vector<uint8_t> LiveFiles::read(const std::string& path) const {
  const std::string* text = edited ? edited(path) : nullptr;
  return text ? bytesOf(*text) : readFile(path);
}

void LiveFiles::compile(const std::string& source, const fs::path& file, Made& m) {
  PageSourceOptions options;
  options.lines = true;
  options.strip = project && project->strip;
  options.read = [this](const std::string& path) { return read(path); };
  BuiltPage built = compilePage(
      source, [&](const KitMessage& warning) { m.warnings.push_back(warning); }, options);
  for (const std::string& read : built.sources) m.inputs.emplace_back(read, "");
  m.files[file] = {{built.bytes.begin(), built.bytes.end()}, std::move(built.lines), std::move(built.places)};
  for (ScriptFile& script : built.scriptFiles)
    m.files[(file.parent_path() / script.name).lexically_normal()] = {
        std::move(script.bytes), std::move(script.lines), {}};
}

void LiveFiles::runStep(const BuildStep& step, Made& m) {
  for (const std::string& input : step.inputs) m.inputs.emplace_back(input, "");
  if (step.name.starts_with(kPageStep))
    return compile(step.inputs.front(), fullName(outputPath(*project, step.outputs.front())), m);
  const auto readBuilt = [&](const std::string& built) {
    const MadeFile* file = findInProject(fullName(built));
    return file ? bytesOf(file->bytes) : readFile(built);
  };
  StepResult result = step.run([&](const KitMessage& warning) { m.warnings.push_back(warning); }, readBuilt);
  for (const std::string& input : result.inputs) m.inputs.emplace_back(input, "");
  for (const BuiltFile& made : result.outputs) {
    const std::string bytes(made.bytes.begin(), made.bytes.end());
    MadeFile& file = m.files[fullName(outputPath(*project, made.name))];
    file.bytes = bytes;
    if (!isBobMap(made.bytes)) continue;
    // The table of the script that came before it.
    const std::string name = outputPath(*project, made.name);
    const fs::path script = fullName(outputPath(*project, result.outputs.front().name));
    m.files[script].lines = parseBobMap(name, bytes).codes;
  }
}

// ---- what came of it

std::vector<KitMessage> LiveFiles::errors() const {
  std::vector<KitMessage> found = planErrors;
  for (const std::string& key : asked) {
    const std::vector<KitMessage>& more = all.at(key).errors;
    found.insert(found.end(), more.begin(), more.end());
  }
  return found;
}

std::vector<KitMessage> LiveFiles::warnings() const {
  std::vector<KitMessage> found;
  for (const std::string& key : asked) {
    const std::vector<KitMessage>& more = all.at(key).warnings;
    found.insert(found.end(), more.begin(), more.end());
  }
  return found;
}

std::vector<std::string> LiveFiles::sources() const {
  std::set<std::string> found;
  if (!projectFile.empty()) found.insert(projectFile);
  for (const std::string& key : asked)
    for (const auto& [input, hash] : all.at(key).inputs) found.insert(input);
  found.insert(plan.missing.begin(), plan.missing.end());
  found.insert(lookedFor.begin(), lookedFor.end());
  return {found.begin(), found.end()};
}
