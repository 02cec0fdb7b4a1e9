// From a page source to the files of the page.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/source/pagesource.h"
#include "kit/source/pagetree.h"
#include "kit/source/pagewriter.h"

struct BuiltPage {
  std::vector<uint8_t> bytes;
  std::vector<ScriptFile> scriptFiles;  // to lie beside the page
  std::vector<std::string> sources;     // all that was read, the page source first
  std::vector<LoadedPage> loadedPages;
  std::vector<BobCodeLines> lines;  // with PageSourceOptions::lines
  PagePlaces places;
};

// By its name, .yaml or .yml, or for want of that by its contents: a text.
bool isPageSource(const std::string& path);

// Throws BuildError.
BuiltPage compilePage(const std::string& source, const KitWarn& warn = {}, const PageSourceOptions& options = {});

// Compiles the source to `output`, and the script files that it names to object files beside that, with their line
// tables (lines/bobmap.h) where lines are asked for. `depfile`, if it has a name, gets what was read as a rule for
// make. All are written, or none. Returns what was written. Throws BuildError.
BuiltPage buildPage(const std::string& source, const std::string& output, const KitWarn& warn = {},
                    const PageSourceOptions& options = {}, const std::string& depfile = {});
