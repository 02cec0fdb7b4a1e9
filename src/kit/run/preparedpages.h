// Pages that are made ready once for all runs that open them.
//
// The project of a page is built, as far as that is due; any other source is compiled in memory. What
// comes of it is only read, on any number of threads.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/run/pagerun.h"
#include "kit/source/pagebuild.h"

class PreparedPages {
 public:
  explicit PreparedPages(const KitWarn& w) : warn(w) {}

  // On one thread, before anything runs. What is wrong with the page is kept for those that open it.
  void prepare(const std::string& page);

  // What the player loads for a page that was prepared: the page itself, or what its project makes of the source. A
  // source without a project is its own name.
  const std::string& pathOf(const std::string& page) const { return pages.at(page).path; }

  // Opens a page that was prepared. False when the player doesn't load it; KitError when it can't be built.
  bool open(PageRun& run, const std::string& page) const;

 private:
  struct Prepared {
    std::string path;  // what is loaded
    std::shared_ptr<const BuiltPage> built;
    std::vector<KitMessage> errors;
  };

  Prepared make(const std::string& page);
  std::string builtByProject(const std::string& source);

  KitWarn warn;
  std::map<std::string, Prepared> pages;
  std::set<std::string> projects;  // their files; those that have been built
};
