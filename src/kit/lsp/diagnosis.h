// What is wrong and odd with one file of an author: a page source, what pages include, a project, tests, a script.
//
// All that a page is made of is looked at with it, so messages may be of other files.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/files.h"

enum class SourceKind { page, part, project, tests, script, other };  // part: what page sources include

// By its name and, of YAML, by what it looks like; YAML that looks like none of these is `other`, since editors have
// that for much else.
SourceKind sourceKindOf(const std::string& path, const std::string& text);

// What a page has once it is built: also what templates and repetitions make.
struct MadeNames {
  struct Widget {
    std::string name, type;
  };
  std::vector<Widget> widgets;
  std::vector<std::string> styles;
};

struct Diagnosis {
  std::vector<KitMessage> errors, warnings;
  std::vector<std::string> sources;       // all that was read
  std::shared_ptr<const MadeNames> made;  // of a page without errors; null for anything else
};

// After the first fault of a script the compiler says nothing more of it; what the tolerant parser finds then comes
// along. `isSaved`: that the disk has the same; some checks look at files themselves and are made then.
Diagnosis diagnose(const std::string& path, SourceKind kind, bool isSaved, const ReadFile& read);
