// Which files of the disk a page may use, beside what the system's permissions say.
//
// A page is a program from somebody else. Names are judged by where they lead, after links, ".." and the search that
// ignores case. A page opens plain files alone whatever the rules: it would wait at a pipe for ever.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

struct FileAccess {
  bool readAnywhere = true;
  bool writeAnywhere = false;                   // or in the page's folder and in those within it
  bool scriptsOpenFiles = true;                 // or the player alone, for what pages are made of
  bool scriptsWriteFiles = true;                // or they read alone
  uintmax_t largest = UINTMAX_MAX;              // bytes of a file: the player reads most kinds whole
  uintmax_t mostWritten = UINTMAX_MAX;          // bytes that scripts write in all; a new file takes a block by itself
  std::vector<std::filesystem::path> readable;  // files, and folders with all in them, beside the page's own

  // Both for a full name. The first is for a file that exists; what is to be written may be new.
  bool mayRead(const std::filesystem::path& file, const std::filesystem::path& pageFolder) const;
  bool mayWrite(const std::filesystem::path& file, const std::filesystem::path& pageFolder) const;
};
