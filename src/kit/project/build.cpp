#include "kit/project/build.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

#include "kit/files.h"
#include "kit/lines/bobmap.h"
#include "kit/project/contenthash.h"
#include "kit/project/mentions.h"
#include "kit/project/missingfiles.h"
#include "kit/project/runsteps.h"
#include "kit/version.h"

namespace fs = std::filesystem;

namespace {

// The name of an input for the manifest, which may move with the project.
std::string manifestName(const Project& project, const std::string& path) {
  return fs::path(path).is_absolute()
             ? path
             : fs::path(path).lexically_proximate(project.folder.empty() ? "." : project.folder).generic_string();
}

void nameForManifest(const Project& project, KitMessage* at) {
  at->file = manifestName(project, at->file);
  for (KitMessage& use : at->uses) nameForManifest(project, &use);
}

// Records of files that are the build's own although no step has made them: after an error those of earlier builds that
// may be stale, and those that a build was about to write.
constexpr char kOwnFiles[] = "own", kClaimedFiles[] = "claimed";

// A build notes what it is about to write in a file of its own first, so that after an interruption the next one knows
// its files; the first one that makes everything drops the notes. A note is "HASH NAME" between two zeros: one that
// breaks off claims no file but one of that very hash.
constexpr char kClaimsName[] = ".vistrel-build.claims";

void claim(const Project& project, const std::vector<FileRecord>& files) {
  std::string notes;
  for (const FileRecord& file : files) (((notes += '\0') += file.hash + " ") += file.name) += '\0';
  if (!notes.empty()) appendToFile(outputPath(project, kClaimsName), notes.data(), notes.size());
}

std::vector<FileRecord> readClaims(const Project& project) {
  std::vector<FileRecord> files;
  std::error_code error;
  const std::string file = outputPath(project, kClaimsName);
  if (!fs::is_regular_file(file, error)) return files;
  const std::vector<uint8_t> notes = readFile(file);
  for (auto at = notes.begin(); at != notes.end();) {
    const auto end = std::find(at, notes.end(), '\0'), space = std::find(at, end, ' ');
    if (space != end) files.push_back({{space + 1, end}, {at, space}});
    at = end == notes.end() ? end : end + 1;
  }
  return files;
}

// What earlier builds have written.
Manifest readRecords(const Project& project) {
  Manifest manifest = readManifest(outputPath(project, kManifestName));
  for (FileRecord& claimed : readClaims(project)) manifest.steps[kClaimedFiles].outputs.push_back(std::move(claimed));
  return manifest;
}

bool isLineTable(const std::string& file) { return file.ends_with(kBobMapExtension); }

class ProjectBuild {
 public:
  ProjectBuild(const Project& p, const BuildOptions& o) : project(p), options(o), before(readRecords(p)) {}

  BuildReport run() {
    const BuildPlan plan = planProject(project);
    errors = plan.errors;
    inputs.insert(plan.missing.begin(), plan.missing.end());
    for (const BuildStep& step : plan.steps) planned.insert(planned.end(), step.outputs.begin(), step.outputs.end());
    if (options.page.empty()) {
      runAll(plan.steps);
    } else {
      runPage(plan.steps);
    }
    refuseTwoMakers(plan.steps);
    runAll(stepsForNamedFiles());
    for (KitMessage& missing : missingFiles(project, now, planned)) errors.push_back(std::move(missing));
    finishReport();
    const bool isAll = errors.empty() && options.page.empty();
    if (isAll) {
      warnOfStrays();
      dropStale();
    } else {
      keepOldRecords();
    }
    try {
      saveManifest();
      std::error_code error;
      if (isAll) fs::remove(outputPath(project, kClaimsName), error);
    } catch (const KitError& e) {
      errors.insert(errors.end(), e.messages.begin(), e.messages.end());
    }
    if (!errors.empty()) throw BuildError(std::move(errors), std::move(report.inputs));
    return std::move(report);
  }

 private:
  struct Outcome {
    bool failed = false;
    std::vector<std::string> made;
    std::vector<KitMessage> warnings, errors;
    std::vector<std::string> inputs;  // of a step that has failed
  };

  void runAll(const std::vector<BuildStep>& steps) {
    outcomes.assign(steps.size(), {});
    runSome(steps, std::vector<bool>(steps.size(), true));
  }

  // The page's own step, and then, as long as there are any, those that make what the files just made name.
  void runPage(const std::vector<BuildStep>& steps) {
    outcomes.assign(steps.size(), {});
    std::vector<bool> chosen(steps.size()), next(steps.size());
    for (size_t i = 0; i < steps.size(); ++i) next[i] = steps[i].name == pageStepName(options.page);
    while (std::find(next.begin(), next.end(), true) != next.end()) {
      runSome(steps, next);
      for (size_t i = 0; i < steps.size(); ++i) chosen[i] = chosen[i] || next[i];
      next = stepsNamedBy(steps, next, chosen);
    }
  }

  // The steps, of those that aren't chosen yet, that make files which the files of `made` name, and the steps before
  // them.
  std::vector<bool> stepsNamedBy(const std::vector<BuildStep>& steps, const std::vector<bool>& made,
                                 const std::vector<bool>& chosen) const {
    std::vector<bool> named(steps.size());
    for (size_t i = 0; i < steps.size(); ++i) {
      const auto record = now.steps.find(steps[i].name);
      if (!made[i] || record == now.steps.end()) continue;
      const std::string scripts = bytesWithScripts(record->second);
      for (size_t k = 0; k < steps.size(); ++k)
        if (!chosen[k] && !named[k]) named[k] = names(record->second.uses, scripts, steps[k]);
    }
    for (size_t i = steps.size(); i-- > 0;)
      for (const size_t before : steps[i].after) named[before] = named[before] || (named[i] && !chosen[before]);
    return named;
  }

  std::string bytesWithScripts(const StepRecord& record) const {
    std::string all;
    for (const FileRecord& file : record.outputs) {
      if (!file.name.ends_with(".kpg") && !file.name.ends_with(".bobo")) continue;
      const std::vector<uint8_t> bytes = readFile(outputPath(project, file.name));
      all.append(bytes.begin(), bytes.end());
    }
    return all;
  }

  // Another page is needed inside of this one, but not to go on to.
  static bool names(const std::vector<FileUse>& uses, std::string_view scripts, const BuildStep& step) {
    for (const FileUse& use : uses)
      if (!use.isLoaded && findBuilt(step.outputs, use.target)) return true;
    const auto isMentioned = [&](const std::string& output) { return scriptMentions(scripts, output); };
    return !step.name.starts_with(kPageStep) && std::any_of(step.outputs.begin(), step.outputs.end(), isMentioned);
  }

  void runSome(const std::vector<BuildStep>& steps, const std::vector<bool>& due) {
    const size_t count = size_t(std::count(due.begin(), due.end(), true));
    size_t done = 0, reported = 0;
    std::vector<bool> finished(steps.size());
    runSteps(steps, options.jobs, [&](size_t i) {
      Outcome outcome;
      const auto failed = [&](size_t before) {
        const std::lock_guard lock(mutex);
        return outcomes[before].failed;
      };
      if (due[i]) {
        outcome.failed = std::any_of(steps[i].after.begin(), steps[i].after.end(), failed);
        if (!outcome.failed) runOne(steps[i], &outcome);
      }
      const std::lock_guard lock(mutex);
      finished[i] = true;
      if (due[i]) {
        outcomes[i] = std::move(outcome);
        if (options.progress) options.progress(++done, count, steps[i].name);
      }
      for (; reported < steps.size() && finished[reported]; ++reported)
        if (due[reported]) deliver(outcomes[reported]);
    });
    for (size_t i = 0; i < steps.size(); ++i) {
      if (!due[i]) continue;
      inputs.insert(steps[i].inputs.begin(), steps[i].inputs.end());
      inputs.insert(outcomes[i].inputs.begin(), outcomes[i].inputs.end());
      errors.insert(errors.end(), outcomes[i].errors.begin(), outcomes[i].errors.end());
    }
  }

  void deliver(const Outcome& outcome) {
    for (const KitMessage& warning : outcome.warnings)
      if (options.warn) options.warn(warning);
    for (const std::string& file : outcome.made) {
      if (isLineTable(file)) continue;
      if (!made.insert(file).second) continue;  // two pages have the same script
      if (options.made) options.made(file);
      ++report.made;
    }
  }

  void runOne(const BuildStep& step, Outcome* outcome) try {
    const auto old = before.steps.find(step.name);
    if (!options.all && old != before.steps.end() && isCurrent(step, old->second)) return keep(step.name, old->second);
    StepResult result = step.run([&](const KitMessage& warning) { outcome->warnings.push_back(warning); }, readFile);
    for (FileUse& use : result.uses) nameForManifest(project, &use.at);
    StepRecord record{step.options, {}, {}, std::move(result.uses), kitVersion()};
    for (const std::string& input : result.inputs)
      record.inputs.push_back({manifestName(project, input), fileHash(input)});
    outcome->made = write(step, result);
    for (const BuiltFile& file : result.outputs) record.outputs.push_back({file.name, contentHash(file.bytes)});
    keep(step.name, std::move(record));
  } catch (const BuildError& e) {
    outcome->failed = true;
    outcome->errors = e.messages;
    outcome->inputs = e.inputs;
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

  bool isCurrent(const BuildStep& step, const StepRecord& record) {
    if (record.kit != kitVersion() || record.options != step.options) return false;
    for (const std::string& output : step.outputs)
      if (std::none_of(record.outputs.begin(), record.outputs.end(), [&](const auto& o) { return o.name == output; }))
        return false;
    const auto inputIsSame = [&](const FileRecord& input) {
      return fileHash(project.pathOf(input.name)) == input.hash;
    };
    const auto outputIsSame = [&](const FileRecord& output) {
      const std::lock_guard lock(writing);
      return hashBefore(output.name) == output.hash;
    };
    return std::all_of(record.inputs.begin(), record.inputs.end(), inputIsSame) &&
           std::all_of(record.outputs.begin(), record.outputs.end(), outputIsSame);
  }

  // Of a file as it was before this build: two pages may have the same script, and which of them is due must not depend
  // on which comes first. For whoever has `writing`.
  const std::string& hashBefore(const std::string& output) {
    const auto [known, isNew] = hashesBefore.try_emplace(output);
    if (isNew) known->second = hashIfThere(outputPath(project, output));
    return known->second;
  }

  // Writes what is not there as it should be, and returns the names of what was not there before the build.
  std::vector<std::string> write(const BuildStep& step, const StepResult& result) {
    const std::lock_guard lock(writing);
    std::vector<std::string> written;
    std::vector<FileRecord> claimed;
    OutputFiles files;
    for (const BuiltFile& file : result.outputs) {
      const std::string path = outputPath(project, file.name);
      if (file.name.starts_with("../") || fs::path(file.name).is_absolute())
        throw KitError(
            messageAt(step.place, step.name + " would write " + file.name + ", outside of the output folder"));
      refuseClashes({path}, result.inputs);
      const std::string hash = contentHash(file.bytes);
      if (hashBefore(file.name) != hash) written.push_back(file.name);
      if (hashIfThere(path) == hash) continue;
      if (!hashBefore(file.name).empty() && before.hashOf(file.name).empty() && !isBobMap(readFile(path)))
        throw KitError(path, "is there and no build made it; move it, or give its source another name");
      if (wasChangedByHand(file.name) && !options.all)
        throw KitError(path, "was changed after it was built; move it, or say --all to write over it");
      std::error_code error;
      fs::create_directories(fs::path(path).parent_path(), error);
      files.add(path, file.bytes.data(), file.bytes.size());
      claimed.push_back({file.name, hash});
    }
    claim(project, claimed);
    files.finish();
    return written;
  }

  bool wasChangedByHand(const std::string& output) {
    const std::string& there = hashBefore(output);
    bool wasBuilt = false;
    for (const auto& [name, step] : before.steps)
      for (const FileRecord& file : step.outputs) {
        if (file.name != output) continue;
        if (file.hash == there) return false;
        wasBuilt = true;
      }
    return wasBuilt && !there.empty();
  }

  // What only running the steps has shown: the plan has refused what the project says twice.
  void refuseTwoMakers(const std::vector<BuildStep>& steps) {
    std::map<std::string, std::pair<const BuildStep*, std::string>> makers;
    for (const BuildStep& step : steps) {
      const auto record = now.steps.find(step.name);
      if (record == now.steps.end()) continue;
      for (const FileRecord& output : record->second.outputs) {
        const auto [first, isNew] = makers.try_emplace(output.name, &step, output.hash);
        if (!isNew && first->second.second != output.hash)
          errors.push_back(messageAt(
              step.place, output.name + " is made twice: of " + first->second.first->name + " and of " + step.name));
      }
    }
  }

  // Files that a page names, that nothing makes and that lie among the sources are copied.
  std::vector<BuildStep> stepsForNamedFiles() {
    const std::vector<std::string> built = builtFiles(now);
    std::set<std::string> known(built.begin(), built.end());
    std::vector<BuildStep> steps;
    for (const FileUse& use : usesInProject(project, now)) {
      std::error_code error;
      if (use.target.starts_with("../") || findBuilt(planned, use.target) || !known.insert(use.target).second) continue;
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
          report.removed += fs::remove(path, error) && !isLineTable(path);
      }
  }

  // After an error the files of steps that didn't run are still the build's own, and what others no longer make may be
  // needed once all is well.
  void keepOldRecords() {
    for (const auto& [name, step] : before.steps)
      if (name != kOwnFiles && name != kClaimedFiles) now.steps.try_emplace(name, step);
    const std::vector<std::string> kept = builtFiles(now);
    std::vector<FileRecord> left;
    for (const auto& [name, step] : before.steps)
      for (const FileRecord& output : step.outputs)
        if (name != kClaimedFiles && !std::binary_search(kept.begin(), kept.end(), output.name)) left.push_back(output);
    if (!left.empty()) now.steps[kOwnFiles].outputs = std::move(left);
  }

  // Always, so that its time says when the project was built.
  void saveManifest() const {
    const std::string path = outputPath(project, kManifestName), text = manifestText(now);
    std::error_code error;
    if (now.steps.empty() && !fs::exists(path, error)) return;
    fs::create_directories(fs::path(path).parent_path(), error);
    writeFile(path, text.data(), text.size());
  }

  // A file that a pattern for pages has found and that is none is read by a page, or nobody knows what it is for.
  void warnOfStrays() const {
    for (const ProjectName& stray : project.noPages)
      if (!inputs.contains(project.pathOf(stray.text)) && options.warn)
        options.warn(messageAt(stray.place, "warning: " + stray.text + " has no 'page', and no page reads it"));
  }

  void finishReport() {
    report.files = builtFiles(now);
    std::erase_if(report.files, isLineTable);
    inputs.insert(project.file);
    for (const auto& [name, step] : now.steps) {
      for (const FileRecord& input : step.inputs) inputs.insert(project.pathOf(input.name));
      if (name.starts_with(kPageStep)) report.pages.push_back({step.outputs.front().name, step.uses});
    }
    for (const std::string& input : inputs) {
      const std::string name = fs::path(input).lexically_relative(outputPath(project, "")).generic_string();
      if (!findBuilt(report.files, name) && !findBuilt(planned, name)) report.inputs.push_back(input);
    }
  }

  const Project& project;
  const BuildOptions& options;
  const Manifest before;
  std::vector<std::string> planned;                 // outputs
  std::mutex writing;                               // for files, and what follows
  std::map<std::string, std::string> hashesBefore;  // of outputs
  std::mutex mutex;                                 // for what follows, while steps run
  Manifest now;
  std::set<std::string> inputs;  // as they can be opened
  std::set<std::string> made;
  std::vector<Outcome> outcomes;
  std::vector<KitMessage> errors;
  BuildReport report;
};

}  // namespace

std::string outputPath(const Project& project, const std::string& name) {
  return project.pathOf((fs::path(project.output) / name).generic_string());
}

BuildReport buildProject(const Project& project, const BuildOptions& options) {
  return ProjectBuild(project, options).run();
}

std::vector<std::string> cleanProject(const Project& project, const KitWarn& warn) {
  std::map<std::string, std::set<std::string>> written;  // hashes by files
  for (const auto& [name, step] : readRecords(project).steps)
    for (const FileRecord& output : step.outputs) written[output.name].insert(output.hash);
  std::set<std::string> folders, removed;
  std::error_code error;
  for (const auto& [name, hashes] : written) {
    const std::string path = outputPath(project, name), hash = fileHash(path);
    if (hash.empty()) continue;
    if (!hashes.contains(hash)) {
      if (warn) warn({path, 0, "was changed after it was built, and stays"});
      continue;
    }
    fs::remove(path, error);
    if (!isLineTable(path)) removed.insert(path);
    folders.insert(fs::path(name).parent_path().generic_string());
  }
  for (const char* record : {kManifestName, kClaimsName, kPackRecordName})
    fs::remove(outputPath(project, record), error);
  // The deepest first; a folder with anything in it stays.
  for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder)
    for (fs::path at = *folder; !at.empty(); at = at.parent_path())
      fs::remove(outputPath(project, at.generic_string()), error);
  fs::remove(outputPath(project, ""), error);
  return {removed.begin(), removed.end()};
}
