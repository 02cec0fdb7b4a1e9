#include "kit/run/runlimits.h"

#include <algorithm>

std::optional<FileReach> fileReachNamed(std::string_view name) {
  const auto at = std::find(kFileReachNames.begin(), kFileReachNames.end(), name);
  if (at == kFileReachNames.end()) return std::nullopt;
  return FileReach(at - kFileReachNames.begin());
}
