// Files that are made as the player asks for them, in the place of files on the disk.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/lines/codeplaces.h"
#include "kit/source/pagewriter.h"

struct MadeFile {
  std::string bytes;
  std::vector<BobCodeLines> lines;  // of its scripts
  PagePlaces places;                // of a page
};

class MadeFiles {
 public:
  virtual ~MadeFiles() = default;

  // The page that is made of a source, by the full name under which the player is to open it; for a page, its own.
  virtual std::string pageOf(const std::string& source) = 0;
  // By a full name; null for what nothing makes, and for what couldn't be made. It stays as long as nothing is made
  // anew.
  virtual const MadeFile* find(const std::filesystem::path& file) = 0;

  // What was wrong, and odd, with what was asked for.
  virtual std::vector<KitMessage> errors() const = 0;
  virtual std::vector<KitMessage> warnings() const = 0;
  // All that was read, and looked for, to make it.
  virtual std::vector<std::string> sources() const = 0;
};
