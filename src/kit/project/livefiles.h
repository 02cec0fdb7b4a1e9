// The files of a page that somebody works on, made from their sources in memory as the player asks for them.
//
// A page of a project is made as the project says, with its pictures, tables, fonts, scripts and the pages that it
// leads to; the output folder stays as it is. Without a project the files beside a page count: menu.kpg is made of
// menu.yaml, dawn.kpx of dawn.png or dawn.gif, unless the made file is there and as new as its source. What is made is
// kept, and made anew only when something that it was made of has changed.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kit/project/plan.h"
#include "kit/run/madefiles.h"

class LiveFiles : public MadeFiles {
 public:
  // For a page, or a page source.
  explicit LiveFiles(std::string page);

  // For texts that are being edited: what a file is to hold in the place of what it does, or null.
  std::function<const std::string*(const std::string& path)> edited;

  // To be called before each run: what was asked for so far is forgotten, and looked at again when it is asked for.
  void begin();

  std::string pageOf(const std::string& source) override;
  const MadeFile* find(const std::filesystem::path& file) override;
  // What would be made under a name that differs only by case, or is there; an empty path for nothing. The player finds
  // such a file once it is built.
  std::filesystem::path findIgnoringCase(const std::filesystem::path& file);
  std::vector<KitMessage> errors() const override;
  std::vector<KitMessage> warnings() const override;
  std::vector<std::string> sources() const override;

 private:
  // What one step, or one source, made the last time.
  struct Made {
    std::map<std::filesystem::path, MadeFile> files;          // by full name
    std::vector<std::pair<std::string, std::string>> inputs;  // and the hashes of what they held
    std::string options;                                      // what else it depends on
    std::vector<KitMessage> errors, warnings;
    uint64_t lookedAt = 0;  // in which run
  };
  using Maker = std::function<void(Made&)>;

  void readPlan();
  const Made& made(const std::string& key, const Maker& make, const std::string& options = {});
  bool isCurrent(const Made& made);
  std::string hashOf(const std::string& input);
  std::vector<uint8_t> read(const std::string& path) const;
  const MadeFile* fileOf(const std::string& key, const std::filesystem::path& file, const Maker& make,
                         const std::string& options = {});
  void lookFor(const std::filesystem::path& made);
  const MadeFile* findInProject(const std::filesystem::path& file);
  const MadeFile* findBeside(const std::filesystem::path& file);
  void compile(const std::string& source, const std::filesystem::path& page, Made& made);
  void runStep(const BuildStep& step, Made& made);

  const std::string page;
  const std::string projectFile;  // empty for none
  std::optional<Project> project;
  BuildPlan plan;
  std::vector<KitMessage> planErrors;
  std::map<std::string, Made> all;                      // by steps and sources
  std::map<std::filesystem::path, std::string> owners;  // of files that only making something has shown: its key
  std::vector<std::string> asked;                       // keys, in this run
  std::set<std::string> lookedFor;                      // in this run: sources that would make what was asked for
  uint64_t run = 0;
};
