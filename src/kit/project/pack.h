// What of a built project goes to the player: everything that is used, and nothing else.
//
// Pages and the files that the project lists by themselves always go. The rest goes when a page names it, when a
// picture that goes needs it, or when its name can be found in a script or a page that goes: scripts make names out of
// pieces, so in doubt a file is kept.
#pragma once

#include <string>
#include <vector>

#include "kit/project/build.h"

struct PackedFile {
  std::string name;
  size_t size;
};

struct PagePictures {
  std::string page;
  size_t pictures = 0;
  uint64_t memory = 0;  // bytes that the pictures which its attributes name take, of the player's kImageCacheSize
};

struct Pack {
  std::vector<PackedFile> files;    // sorted
  std::vector<std::string> unused;  // sorted
  std::vector<PagePictures> pages;
};

Pack planPack(const Project& project, const BuildReport& built);

// To a file .zip, .tar.gz or .tgz, or to a folder, in which only what an earlier pack put there is replaced. Returns
// the size of the archive, or 0. Throws KitError.
// A name that is neither a folder's nor an archive's is for checkPackName to refuse.
size_t writePack(const Project& project, const Pack& pack, const std::string& output);

// Throws KitError for a name that no pack can have: that of a file, or of an archive of another kind.
void checkPackName(const std::string& output);

// The name of the archive when nobody gives one: that of the project's folder, beside it.
std::string defaultPackName(const Project& project);
