// From the description of a project to the steps by which its files are made.
//
// A step knows its inputs and outputs as far as the project says them. Running it may find more: a page reads scripts,
// and their object files go beside it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/project/manifest.h"
#include "kit/project/project.h"

struct BuiltFile {
  std::string name;  // in the output folder
  std::vector<uint8_t> bytes;
};

struct StepResult {
  std::vector<BuiltFile> outputs;
  std::vector<std::string> inputs;  // all files that were read, as they were opened
  std::vector<FileUse> uses;
};

// How the names of steps that make pages begin.
inline constexpr std::string_view kPageStep = "page ";
std::string pageStepName(const std::string& page);  // a page as the project calls it

struct BuildStep {
  std::string name;                 // "page menu.yaml"
  YamlPlace place;                  // in the project file
  std::string options;              // all but the inputs' contents that the outputs depend on
  std::vector<std::string> inputs;  // as they can be opened; running it may find more
  std::vector<std::string> outputs;
  std::vector<size_t> after;                                       // steps, by their numbers; earlier ones only
  std::function<StepResult(const KitWarn&, const ReadFile&)> run;  // on any thread; throws KitError
};

// What can't be planned is left out, with an error; the rest can be built.
struct BuildPlan {
  std::vector<BuildStep> steps;  // in the order in which people are to hear of them
  std::vector<KitMessage> errors;
  std::vector<std::string> missing;  // files that are not there
};

BuildPlan planProject(const Project& project);

// Copies a file of the project as it is; `at` is where it is named.
BuildStep copyStep(const Project& project, const ProjectName& file);
