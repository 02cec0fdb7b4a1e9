#include "kit/run/runlimits.h"

std::optional<FileReach> fileReachNamed(std::string_view name) {
  if (name == "page") return FileReach::page;
  if (name == "all") return FileReach::all;
  if (name == "none") return FileReach::none;
  return std::nullopt;
}
