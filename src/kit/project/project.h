// A project: the file vistrel.yaml at the root of an author's folder, as a plain description.
//
// It says what is to be built, not how. Every name keeps the place where it was written, so that whatever goes wrong
// with it later can name the line. Names are relative to the project's folder, and so are built files to the output
// folder: art/dawn.png becomes BUILD/art/dawn.kpx.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/pictures/clutfile.h"
#include "kit/yaml/yamlnode.h"

inline constexpr char kProjectFileName[] = "vistrel.yaml";

struct ProjectName {
  std::string text;
  YamlPlace place;
  bool byPattern = false;  // found, not named
};

struct ProjectTable {
  ProjectName name;  // of the built file
  bool standard = false;
  std::vector<ProjectName> pictures;  // none: all pictures that use it
  size_t most = kMaxClutColors - 1;   // colours
};

struct ProjectPicture {
  ProjectName file;
  ProjectName table;                     // a table of the project or a file; empty: one of its own
  std::optional<std::string> to;         // the folder of the built file, if not the source's
  std::optional<std::string> tableName;  // what the picture calls its table
  size_t most = kMaxClutColors - 1;      // colours of a table of its own
  std::optional<uint32_t> background;    // 0x00RRGGBB
  bool dither = false;
};

struct ProjectFont {
  ProjectName font;  // a file, or the name of a font of the machine
  std::string as;    // the name of the built file; empty: the font file's own
};

struct Project {
  std::string file;    // as it was opened
  std::string folder;  // empty for the current one
  std::string output = "build";
  bool strip = false;  // scripts without their names
  std::vector<ProjectName> pages, scripts, files;
  std::vector<ProjectName> noPages;  // found by a pattern for pages, and none: what pages include
  std::vector<std::string> keep;     // built files to ship although nothing seems to use them; may be patterns
  std::vector<std::string> allow;    // names of checks that are switched off
  std::vector<ProjectTable> tables;
  std::vector<ProjectPicture> pictures;
  std::vector<ProjectFont> fonts;

  // A name in the project's folder as it can be opened from here.
  std::string pathOf(const std::string& name) const;
};

// Throws KitError with all that is wrong.
Project readProject(const std::string& file);

// The project file in the folder or in the nearest one around it; empty if there is none.
std::string findProject(const std::string& folder);

// What the project calls the page with that source; empty if that is none of its pages.
std::string pageOfProject(const Project& project, const std::string& source);

// Whether a name means a font file rather than a font of the machine.
bool isFontFileName(const std::string& name);
