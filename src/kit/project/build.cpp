#include "kit/project/build.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

#include "kit/files.h"
#include "kit/project/contenthash.h"
#include "kit/project/missingfiles.h"
#include "kit/project/runsteps.h"

namespace fs = std::filesystem;

namespace {

// The name of an input for the manifest, which may move with the project.
std::string manifestName(const Project& project, const std::string& path) {
  return fs::path(path).is_absolute()
             ? path
             : fs::path(path).lexically_proximate(project.folder.empty() ? "." : project.folder).string();
}

// The step of files that a build means to make, and their hash.
constexpr char kBegunStep[] = "begun";

class ProjectBuild {
 public:
  ProjectBuild(const Project& p, const BuildOptions& o)
      : project(p), options(o), before(readManifest(outputPath(p, kManifestName))) {}

  BuildReport run() {
    BuildPlan plan = planProject(project);
    errors = std::move(plan.errors);
    claim(plan.steps);
    runAll(plan.steps);
    runAll(stepsForNamedFiles());
    for (KitMessage& missing : missingFiles(project, now)) errors.push_back(std::move(missing));
    if (errors.empty()) {
      dropStale();
    } else {
      keepOldRecords();
    }
    saveManifest(now);
    if (!errors.empty()) throw KitError(std::move(errors));
    return finishReport();
  }

 private:
  struct Outcome {
    bool failed = false;
    std::vector<std::string> made;
    std::vector<KitMessage> warnings, errors;
  };

  // A build may be interrupted, and the next one must know which files are its own.
  void claim(const std::vector<BuildStep>& steps) const {
    Manifest claimed = before;
    std::vector<FileRecord>& begun = claimed.steps[kBegunStep].outputs;
    std::error_code error;
    for (const BuildStep& step : steps)
      for (const std::string& output : step.outputs)
        if (!fs::exists(outputPath(project, output), error)) begun.push_back({output, kBegunStep});
    if (!begun.empty()) saveManifest(claimed);
  }

  void runAll(const std::vector<BuildStep>& steps) {
    outcomes.assign(steps.size(), {});
    size_t done = 0, reported = 0;
    std::vector<bool> finished(steps.size());
    runSteps(steps, options.jobs, [&](size_t i) {
      Outcome outcome;
      const auto failed = [&](size_t before) {
        const std::lock_guard lock(mutex);
        return outcomes[before].failed;
      };
      outcome.failed = std::any_of(steps[i].after.begin(), steps[i].after.end(), failed);
      if (!outcome.failed) runOne(steps[i], &outcome);
      const std::lock_guard lock(mutex);
      outcomes[i] = std::move(outcome);
      finished[i] = true;
      if (options.progress) options.progress(++done, steps.size(), steps[i].name);
      for (; reported < steps.size() && finished[reported]; ++reported) deliver(outcomes[reported]);
    });
    for (Outcome& outcome : outcomes) errors.insert(errors.end(), outcome.errors.begin(), outcome.errors.end());
  }

  void deliver(const Outcome& outcome) {
    for (const KitMessage& warning : outcome.warnings)
      if (options.warn) options.warn(warning);
    for (const std::string& file : outcome.made)
      if (options.made) options.made(file);
    report.made += outcome.made.size();
  }

  void runOne(const BuildStep& step, Outcome* outcome) try {
    const auto old = before.steps.find(step.name);
    if (!options.all && old != before.steps.end() && isCurrent(step, old->second)) return keep(step.name, old->second);
    StepResult result = step.run([&](const KitMessage& warning) { outcome->warnings.push_back(warning); });
    StepRecord record{step.options, {}, {}, std::move(result.uses)};
    for (const std::string& input : result.inputs)
      record.inputs.push_back({manifestName(project, input), fileHash(input)});
    outcome->made = write(step, result);
    for (const BuiltFile& file : result.outputs) record.outputs.push_back({file.name, contentHash(file.bytes)});
    keep(step.name, std::move(record));
  } catch (const KitError& e) {
    outcome->failed = true;
    outcome->errors = e.messages;
  } catch (const std::exception& e) {
    outcome->failed = true;
    outcome->errors = {messageAt(step.place, step.name + ": " + e.what())};
  }

  void keep(const std::string& name, StepRecord record) {
    const std::lock_guard lock(mutex);
    now.steps[name] = std::move(record);
  }

  bool isCurrent(const BuildStep& step, const StepRecord& record) const {
    if (record.options != step.options) return false;
    for (const std::string& output : step.outputs)
      if (std::none_of(record.outputs.begin(), record.outputs.end(), [&](const auto& o) { return o.name == output; }))
        return false;
    const auto inputIsSame = [&](const FileRecord& input) {
      return fileHash(project.pathOf(input.name)) == input.hash;
    };
    const auto outputIsSame = [&](const FileRecord& output) {
      return fileHash(outputPath(project, output.name)) == output.hash;
    };
    return std::all_of(record.inputs.begin(), record.inputs.end(), inputIsSame) &&
           std::all_of(record.outputs.begin(), record.outputs.end(), outputIsSame);
  }

  // Writes what is not there as it should be, and returns its names.
  std::vector<std::string> write(const BuildStep& step, const StepResult& result) {
    std::vector<std::string> written;
    OutputFiles files;
    for (const BuiltFile& file : result.outputs) {
      const std::string path = outputPath(project, file.name);
      if (file.name.starts_with("../") || fs::path(file.name).is_absolute())
        throw KitError(
            messageAt(step.place, step.name + " would write " + file.name + ", outside of the output folder"));
      refuseInput(path, result.inputs);
      const std::string there = fileHash(path);
      if (there == contentHash(file.bytes)) continue;
      if (!there.empty() && before.hashOf(file.name).empty())
        throw KitError(path, "is there and no build made it; move it, or give its source another name");
      std::error_code error;
      fs::create_directories(fs::path(path).parent_path(), error);
      files.add(path, file.bytes.data(), file.bytes.size());
      written.push_back(file.name);
    }
    files.finish();
    return written;
  }

  // Files that a page names, that nothing makes and that lie among the sources are copied.
  std::vector<BuildStep> stepsForNamedFiles() {
    const std::vector<std::string> built = builtFiles(now);
    std::set<std::string> known(built.begin(), built.end());
    std::vector<BuildStep> steps;
    for (const FileUse& use : usesInProject(project, now)) {
      std::error_code error;
      if (use.target.starts_with("../") || !known.insert(use.target).second) continue;
      if (!fs::is_regular_file(project.pathOf(use.target), error)) continue;
      YamlPlace place;
      place.file = std::make_shared<std::string>(use.at.file);
      place.line = use.at.line;
      steps.push_back(copyStep(project, {use.target, place}));
    }
    return steps;
  }

  // What earlier builds wrote and this one has no use for.
  void dropStale() {
    const std::vector<std::string> kept = builtFiles(now);
    for (const auto& [name, step] : before.steps)
      for (const FileRecord& output : step.outputs) {
        const std::string path = outputPath(project, output.name);
        std::error_code error;
        if (!std::binary_search(kept.begin(), kept.end(), output.name) && fileHash(path) == output.hash)
          fs::remove(path, error);
      }
  }

  // After an error the files of steps that didn't run are still the build's own.
  void keepOldRecords() {
    for (const auto& [name, step] : before.steps)
      if (name != kBegunStep) now.steps.try_emplace(name, step);
  }

  // Always, so that its time says when the project was built.
  void saveManifest(const Manifest& manifest) const {
    const std::string path = outputPath(project, kManifestName), text = manifestText(manifest);
    std::error_code error;
    if (manifest.steps.empty() && !fs::exists(path, error)) return;
    fs::create_directories(fs::path(path).parent_path(), error);
    writeFile(path, text.data(), text.size());
  }

  BuildReport finishReport() {
    report.files = builtFiles(now);
    std::set<std::string> inputs = {project.file};
    for (const auto& [name, step] : now.steps) {
      for (const FileRecord& input : step.inputs) inputs.insert(project.pathOf(input.name));
      if (name.starts_with(kPageStep)) report.pages.push_back({step.outputs.front().name, step.uses});
    }
    for (const std::string& input : inputs) {
      const std::string name = fs::path(input).lexically_relative(outputPath(project, "")).string();
      if (!std::binary_search(report.files.begin(), report.files.end(), name)) report.inputs.push_back(input);
    }
    return std::move(report);
  }

  const Project& project;
  const BuildOptions& options;
  const Manifest before;
  std::mutex mutex;  // for what follows, while steps run
  Manifest now;
  std::vector<Outcome> outcomes;
  std::vector<KitMessage> errors;
  BuildReport report;
};

}  // namespace

std::string outputPath(const Project& project, const std::string& name) {
  return project.pathOf((fs::path(project.output) / name).string());
}

BuildReport buildProject(const Project& project, const BuildOptions& options) {
  return ProjectBuild(project, options).run();
}

std::vector<std::string> cleanProject(const Project& project, const KitWarn& warn) {
  const std::string manifestFile = outputPath(project, kManifestName);
  std::set<std::string> folders, removed;
  std::error_code error;
  for (const auto& [name, step] : readManifest(manifestFile).steps)
    for (const FileRecord& output : step.outputs) {
      const std::string path = outputPath(project, output.name);
      const std::string hash = fileHash(path);
      if (hash.empty()) continue;
      if (hash != output.hash) {
        if (warn) warn({path, 0, "was changed after it was built, and stays"});
        continue;
      }
      fs::remove(path, error);
      removed.insert(path);
      folders.insert(fs::path(output.name).parent_path().string());
    }
  fs::remove(manifestFile, error);
  fs::remove(outputPath(project, kPackRecordName), error);
  // The deepest first; a folder with anything in it stays.
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
    for (fs::path at = *folder; !at.empty(); at = at.parent_path()) fs::remove(outputPath(project, at.string()), error);
  fs::remove(outputPath(project, ""), error);
  return {removed.begin(), removed.end()};
}
