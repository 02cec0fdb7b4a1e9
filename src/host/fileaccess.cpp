#include "host/fileaccess.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// Whether the file, a name without links and "..", is that place, or in it as a folder, or in one within it. They are
// compared as the disk knows them, since two names may mean one.
bool isWithin(const fs::path& file, const fs::path& place) {
  std::error_code ignored;
  for (fs::path around = file;; around = around.parent_path()) {
    if (fs::equivalent(around, place, ignored)) return true;
    if (around == around.parent_path()) return false;
  }
}

fs::path orHere(const fs::path& folder) { return folder.empty() ? fs::path(".") : folder; }

}  // namespace

bool FileAccess::mayRead(const fs::path& file, const fs::path& pageFolder) const {
  if (readAnywhere) return true;
  std::error_code error;
  const fs::path real = fs::canonical(file, error);
  if (error) return false;
  return isWithin(real, orHere(pageFolder)) ||
         std::any_of(readable.begin(), readable.end(), [&](const fs::path& place) { return isWithin(real, place); });
}

bool FileAccess::mayWrite(const fs::path& file, const fs::path& pageFolder) const {
  std::error_code error;
  // A link that leads nowhere is there, and would make a file where it leads.
  const bool isThere = fs::exists(fs::symlink_status(file, error));
  if (isThere && !fs::is_regular_file(file, error)) return false;
  if (writeAnywhere) return true;
  const fs::path real = fs::weakly_canonical(file, error);
  return !error && isWithin(real, orHere(pageFolder));
}
