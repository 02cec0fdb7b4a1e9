#include "kit/project/plan.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "kit/files.h"
#include "kit/fonts/fontreport.h"
#include "kit/fonts/machinefonts.h"
#include "kit/lines/bobmap.h"
#include "kit/pictures/convertpicture.h"
#include "kit/pictures/standardclut.h"
#include "kit/project/pageuses.h"
#include "kit/run/bobtools.h"
#include "kit/source/pagebuild.h"
#include "kit/source/scripts.h"
#include "kit/suggest.h"

namespace fs = std::filesystem;

namespace {

// Where a built file goes: as its source lies in the project, and at the top for a source from elsewhere.
std::string outputName(const std::string& source, const char* extension = nullptr) {
  fs::path name = fs::path(source).lexically_normal();
  if (name.is_absolute() || *name.begin() == "..") name = name.filename();
  return (extension ? name.replace_extension(extension) : name).generic_string();
}

std::vector<uint8_t> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

// The line table of the file that was added last. It costs the player nothing, so stripped code has one, too: then
// nothing else says where an error is.
void addLines(StepResult* result, const std::string& folder, const std::vector<BobCodeLines>& lines) {
  const BuiltFile& built = result->outputs.back();
  const std::string_view bytes(reinterpret_cast<const char*>(built.bytes.data()), built.bytes.size());
  const std::string name = bobMapName(built.name);
  const std::string text = bobMapText((fs::path(folder) / name).generic_string(), makeBobMap(bytes, lines));
  result->outputs.push_back({name, bytesOf(text)});
}

class Planner {
 public:
  explicit Planner(const Project& p) : project(p) {}

  BuildPlan plan() {
    for (const ProjectTable& table : project.tables) planTable(table);
    for (const ProjectPicture& picture : project.pictures) planPicture(picture);
    for (const ProjectFont& font : project.fonts) planFont(font);
    for (const ProjectName& script : project.scripts) planScript(script);
    for (const ProjectName& file : project.files) add(copyStep(project, file));
    for (const ProjectName& page : project.pages) planPage(page);
    return {std::move(steps), std::move(errors), std::move(missing)};
  }

 private:
  void fail(const YamlPlace& place, const std::string& text) { errors.push_back(messageAt(place, text)); }

  void add(BuildStep step) {
    for (const std::string& output : step.outputs) {
      const auto [first, isNew] = makers.try_emplace(output, steps.size());
      if (isNew) continue;
      return fail(step.place, output + " is made twice: of " + steps[first->second].name + " and of " + step.name);
    }
    steps.push_back(std::move(step));
  }

  bool isThere(const ProjectName& file) {
    std::error_code error;
    if (fs::is_regular_file(project.pathOf(file.text), error)) return true;
    missing.push_back(project.pathOf(file.text));
    fail(file.place, file.text + (fs::exists(project.pathOf(file.text), error) ? " is no file" : " is not there"));
    return false;
  }

  void planTable(const ProjectTable& table) {
    BuildStep step{"table " + table.name.text, table.name.place, {}, {}, {table.name.text}, {}, {}};
    if (table.standard) {
      step.options = "standard";
      step.run = [name = table.name.text](const KitWarn&, const ReadFile&) {
        const auto colors = standardClut();
        return StepResult{{{name, clutBytes({colors.begin(), colors.end()})}}, {}, {}};
      };
      return add(std::move(step));
    }
    std::vector<std::string> pictures;
    step.options = "colors " + std::to_string(table.most);
    const auto take = [&](const ProjectName& picture) {
      pictures.push_back(project.pathOf(picture.text));
      step.options += ", " + picture.text;
    };
    for (const ProjectName& picture : table.pictures)
      if (isThere(picture)) take(picture);
    if (table.pictures.empty())
      for (const ProjectPicture& picture : project.pictures)
        if (picture.table.text == table.name.text) take(picture.file);
    if (pictures.empty() && table.pictures.empty())
      fail(table.name.place, "no picture uses the table " + table.name.text + ", so it has no colours");
    step.inputs = pictures;
    step.run = [name = table.name.text, pictures, most = table.most](const KitWarn&, const ReadFile&) {
      return StepResult{{{name, clutBytes(clutOfPictures(pictures, most))}}, pictures, {}};
    };
    add(std::move(step));
  }

  // What a page calls a file of the output folder, if all pages lie in one folder.
  std::string nameForPages(const std::string& output) const {
    fs::path folder;
    for (const ProjectName& page : project.pages) {
      const fs::path mine = fs::path(outputName(page.text)).parent_path();
      if (&page != &project.pages.front() && mine != folder) return output;
      folder = mine;
    }
    return folder.empty() ? output : fs::path(output).lexically_relative(folder).generic_string();
  }

  void planPicture(const ProjectPicture& picture) {
    if (!isThere(picture.file)) return;
    std::string output = outputName(picture.file.text, ".kpx");
    if (picture.to) output = (fs::path(*picture.to) / fs::path(output).filename()).lexically_normal().generic_string();
    BuildStep step{"picture " + picture.file.text, picture.file.place, {}, {}, {output}, {}, {}};
    step.inputs = {project.pathOf(picture.file.text)};
    PictureOptions options;
    std::string clut = picture.table.text;
    if (clut.empty()) {
      clut = ownClutName(output);
      step.outputs.push_back(clut);
    } else if (const auto maker = makers.find(clut); maker != makers.end()) {
      step.after.push_back(maker->second);
      options.clut = project.pathOf((fs::path(project.output) / clut).generic_string());
    } else if (isThere(picture.table)) {
      options.clut = project.pathOf(clut);
      step.inputs.push_back(options.clut);
      clut = outputName(clut);
    } else {
      return;
    }
    options.clutName = picture.tableName.value_or(nameForPages(clut));
    options.most = picture.most;
    options.background = picture.background;
    options.dither = picture.dither;
    step.options = "table " + *options.clutName + " of " + picture.table.text + ", colors " +
                   std::to_string(options.most) + ", background " +
                   (options.background ? std::to_string(*options.background) : "none") +
                   (options.dither ? ", dithered" : "");
    step.run = [input = project.pathOf(picture.file.text), output, clut, options](const KitWarn&,
                                                                                  const ReadFile& readBuilt) {
      ConvertedPicture made = pictureForPlayer(input, output, options, readBuilt);
      StepResult result{{{output, std::move(made.kpx)}}, {input}, {}};
      if (options.clut.empty()) {
        result.outputs.push_back({clut, std::move(made.ownClut)});
      } else {
        result.inputs.push_back(options.clut);
      }
      return result;
    };
    add(std::move(step));
  }

  void planFont(const ProjectFont& font) {
    std::string file;
    if (isFontFileName(font.font.text)) {
      if (!isThere(font.font)) return;
      file = project.pathOf(font.font.text);
    } else {
      file = machineFonts().find(font.font.text);
      if (file.empty()) {
        fail(font.font.place, "this machine has no font '" + font.font.text + "'" +
                                  suggestion(font.font.text, machineFonts().names()) +
                                  "; install it, or put its file into the project and name that");
        return;
      }
    }
    const bool isOwn = isFontFileName(font.font.text);
    const std::string output = !font.as.empty() ? font.as
                               : isOwn          ? outputName(font.font.text)
                                                : fs::path(file).filename().string();
    BuildStep step{"font " + font.font.text, font.font.place, isOwn ? "" : file, {file}, {output}, {}, {}};
    step.run = [file, output](const KitWarn&, const ReadFile&) {
      const FontReport report = reportFont(file);
      if (!report.problem.empty()) throw KitError(file, report.problem);
      return StepResult{{{output, readFile(file)}}, {file}, {}};
    };
    add(std::move(step));
  }

  void planScript(const ProjectName& script) {
    if (!isThere(script)) return;
    const std::string output = outputName(script.text, ".bobo");
    const std::string path = project.pathOf(script.text);
    BuildStep step{"script " + script.text, script.place, project.strip ? "stripped" : "", {path}, {output}, {}, {}};
    step.outputs.push_back(bobMapName(output));
    step.run = [path, output, strip = project.strip, outputs = project.pathOf(project.output)](const KitWarn&,
                                                                                               const ReadFile&) {
      const ScriptFile made = compileScriptFile(path, strip ? BobCodeNames() : codeNamesByLine(path));
      StepResult result{{{output, bytesOf(made.bytes)}}, {path}, {}};
      addLines(&result, outputs, made.lines);
      return result;
    };
    add(std::move(step));
  }

  void planPage(const ProjectName& page) {
    if (!isThere(page)) return;
    const std::string output = outputName(page.text, ".kpg");
    const std::string path = project.pathOf(page.text);
    BuildStep step{pageStepName(page.text), page.place, project.strip ? "stripped" : "", {path}, {output}, {}, {}};
    step.outputs.push_back(bobMapName(output));
    step.run = [path, output, strip = project.strip, outputs = project.pathOf(project.output)](const KitWarn& warn,
                                                                                               const ReadFile&) {
      PageSourceOptions options;
      options.strip = strip;
      options.lines = true;
      BuiltPage built = compilePage(path, warn, options);
      const fs::path folder = fs::path(output).parent_path();
      StepResult result{{{output, built.bytes}}, built.sources, pageUses(path, folder.generic_string(), built)};
      addLines(&result, outputs, built.lines);
      for (const ScriptFile& script : built.scriptFiles) {
        result.outputs.push_back({(folder / script.name).lexically_normal().generic_string(), bytesOf(script.bytes)});
        addLines(&result, outputs, script.lines);
      }
      return result;
    };
    add(std::move(step));
  }

  const MachineFonts& machineFonts() {
    if (!fonts) fonts = std::make_unique<MachineFonts>();
    return *fonts;
  }

  const Project& project;
  std::vector<BuildStep> steps;
  std::map<std::string, size_t> makers;  // the first step for each built file
  std::unique_ptr<MachineFonts> fonts;
  std::vector<KitMessage> errors;
  std::vector<std::string> missing;
};

}  // namespace

BuildPlan planProject(const Project& project) { return Planner(project).plan(); }

std::string pageStepName(const std::string& page) { return std::string(kPageStep) + page; }

BuildStep copyStep(const Project& project, const ProjectName& file) {
  const std::string output = outputName(file.text), path = project.pathOf(file.text);
  BuildStep step{"file " + file.text, file.place, {}, {path}, {output}, {}, {}};
  step.run = [path, output](const KitWarn&, const ReadFile&) {
    return StepResult{{{output, readFile(path)}}, {path}, {}};
  };
  return step;
}
