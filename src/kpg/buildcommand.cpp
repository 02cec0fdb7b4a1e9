// kpg build: a page source becomes a page, or a project everything that it describes.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/depfile.h"
#include "kit/files.h"
#include "kit/project/build.h"
#include "kit/source/pagebuild.h"
#include "kpg/commands.h"
#include "kpg/pagechecks.h"
#include "kpg/projectbuild.h"

namespace fs = std::filesystem;

namespace {

struct BuildCommandOptions {
  std::string source, output, depfile;
  BuildOptions project;
  PageSourceOptions page;
  bool expand = false, check = false;
};

bool isProject(const std::string& source) {
  std::error_code error;
  return source.empty() || fs::is_directory(source, error) || fs::path(source).filename() == kProjectFileName;
}

void buildOnePage(const BuildCommandOptions& options) {
  const KitWarn warn = [&](const KitMessage& warning) { sayWarning(warning, options.check); };
  buildPage(options.source, options.output, warn, options.page, options.depfile);
}

// It must be neither an input nor what the build itself has written.
void writeDepfile(const std::string& depfile, const Project& project, const BuildReport& report) {
  if (depfile.empty()) return;
  const std::string target = outputPath(project, kManifestName);
  std::vector<std::string> files = report.inputs;
  for (const std::string& file : report.files) files.push_back(outputPath(project, file));
  files.push_back(target);
  refuseClashes({depfile}, files);
  const std::string text = depfileText(target, report.inputs);
  writeFile(depfile, text.data(), text.size());
}

// A page of the project around it, into the project's folder of built files.
void buildPageOfProject(BuildCommandOptions options) {
  const std::string file = findProject(fs::path(options.source).parent_path().generic_string());
  if (file.empty()) KpgCommand::refuse("--out is required");
  Project project = readProject(file);
  options.project.page = pageOfProject(project, options.source);
  if (options.project.page.empty())
    throw KitError(options.source, "is none of the pages of " + file + "; add it there, or say -o PAGE.kpg");
  if (options.page.strip) project.strip = true;
  const BuildReport report = buildOnTerminal(project, options.project, options.check);
  writeDepfile(options.depfile, project, report);
}

void buildWholeProject(const BuildCommandOptions& options) {
  if (options.expand) KpgCommand::refuse("--expand takes a page source");
  Project project = openProject(options.source, options.output);
  if (options.page.strip) project.strip = true;
  const BuildReport report = buildOnTerminal(project, options.project, options.check);
  writeDepfile(options.depfile, project, report);
}

// After a build that has succeeded, of what was built.
void checkBuilt(const BuildCommandOptions& options) {
  report(isProject(options.source) ? checkProject(openProject(options.source, options.output))
                                   : checkPages({options.source}),
         std::cerr);
}

void printPlain(const std::string& source, const std::string& output) {
  const PlainSource plain = plainPageSource(source);
  refuseClashes({output}, plain.sources);
  writeFile(output.empty() ? "-" : output, plain.text.data(), plain.text.size());
}

}  // namespace

void addBuildCommand(CommandLine& line) {
  auto options = std::make_shared<BuildCommandOptions>();
  KpgCommand command = line.command("build", "Compile a page source, or build a project: whatever has changed");
  command.add("source", options->source, "A page source, or the folder of a project; by default the project around")
      .type("PAGE.yaml|FOLDER");
  command
      .add("-o,--out", options->output,
           "The page to write; - for the standard output. Of a project: the folder. A page of a project needs none")
      .type("PAGE.kpg|FOLDER");
  command.add("--depfile", options->depfile, "Write what was read as a rule for make, for other build systems")
      .type("FILE");
  command.flag("--all", options->project.all, "Build all of a project, whether or not it has changed");
  command.add("--jobs", options->project.jobs, "This number of threads; by default as many as the machine runs at once")
      .between(1, 1024);
  command.flag("--lines", options->page.lines,
               "Write line tables beside the page, PAGE.bobmap, by which errors name lines; a project always has them");
  command.flag("--strip", options->page.strip, "Leave out the names of scripts, by which an error says where it is");
  command.flag("--check", options->check, "Then do as kpg check does");
  command.flag("--expand", options->expand, "Print the source without constants, templates and the like instead");
  command.runs([options] {
    std::error_code error;
    if (!options->source.empty() && !fs::exists(options->source, error))
      throw KitError(options->source, std::strerror(ENOENT));
    if (options->expand && options->check) KpgCommand::refuse("--expand builds nothing to check");
    if (isProject(options->source)) {
      buildWholeProject(*options);
    } else {
      if (options->expand) return printPlain(options->source, options->output);
      options->output.empty() ? buildPageOfProject(*options) : buildOnePage(*options);
    }
    if (options->check) checkBuilt(*options);
  });
}
