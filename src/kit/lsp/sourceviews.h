// The views of all files that an editor's question may be about: those that are open, and those that belong to the same
// pages. A view is kept for as long as its text stays.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "kit/lsp/diagnosis.h"
#include "kit/lsp/editedfiles.h"
#include "kit/lsp/pageview.h"
#include "kit/lsp/scriptview.h"

class SourceViews {
 public:
  explicit SourceViews(const EditedFiles& f) : files(f) {}

  // A page source, or what page sources include; null for a file that is neither open nor there.
  std::shared_ptr<const PageView> page(const std::string& path);

  // The scripts in a page source, or that of a script file; empty for a file that is neither open nor there.
  using Scripts = std::vector<std::shared_ptr<const ScriptView>>;
  Scripts scripts(const std::string& path);
  Scripts relatedScripts(const std::string& path);

  // Also part for YAML that looks like nothing, if a page includes it.
  SourceKind kindOf(const std::string& path);

  // The sources that share names with this one, itself first: of a page what it includes and its scripts; of any other
  // those of all pages that have it. Pages are looked for among the open files, in the project and in its folder.
  std::vector<std::string> related(const std::string& path);

  // Those of them that are YAML, in the same order. With `own`, that is the view of the file itself, which saves
  // reading its text again when it has been read with a mark in it.
  using PageViewPtr = std::shared_ptr<const PageView>;
  std::vector<std::pair<std::string, PageViewPtr>> relatedPages(const std::string& path, PageViewPtr own = nullptr);

  // What the page had when it was last without errors; null if it never was. Both from any thread.
  std::shared_ptr<const MadeNames> madeNames(const std::string& path);
  void setMadeNames(const std::string& path, std::shared_ptr<const MadeNames> names);

  // Full name of a file as a source names it.
  static std::string besides(const std::string& source, const std::string& name);

  // Names that the sources in this file's folder, and its project, can give for a key such as `background`: relative to
  // the folder.
  std::vector<std::string> filesFor(const std::string& path, const std::string& value);

  const EditedFiles& files;

 private:
  SourceKind looksLike(const std::string& path);
  using ViewOf = std::function<std::shared_ptr<const PageView>(const std::string&)>;
  void addParts(const std::string& path, const ViewOf& viewOf, std::vector<std::string>& into);
  std::vector<std::string> related(const std::string& path, const ViewOf& viewOf);
  std::vector<std::string> pagesAround(const std::string& path);

  std::mutex mutex;  // of what comes next
  std::map<std::string, std::shared_ptr<const MadeNames>> made;

  std::shared_ptr<const EditedText> textOf(const std::string& path);

  std::map<std::string, std::shared_ptr<const EditedText>> texts;  // of files that aren't open
  std::map<std::string, std::shared_ptr<const PageView>> views;
  std::map<std::string, std::pair<std::shared_ptr<const EditedText>, Scripts>> scriptViews;
};
