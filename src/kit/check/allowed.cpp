#include "kit/check/allowed.h"

#include <algorithm>
#include <sstream>

#include "kit/files.h"
#include "kit/suggest.h"

namespace {

constexpr std::string_view kAllow = "kpg: allow ";

// A comment of YAML, or of a script.
size_t commentAt(const std::string& line, size_t marker) {
  const size_t before = line.find_last_not_of(" \t", marker == 0 ? std::string::npos : marker - 1);
  if (marker == 0 || before == std::string::npos) return std::string::npos;
  if (line[before] == '#') return before;
  return before > 0 && line[before] == '/' && line[before - 1] == '/' ? before - 1 : std::string::npos;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r") == std::string_view::npos; }

}  // namespace

AllowedFindings::AllowedFindings(const std::vector<std::string>& everywhere)
    : names(everywhere.begin(), everywhere.end()) {}

bool AllowedFindings::allows(const Finding& finding) {
  if (names.contains(finding.check)) return true;
  const KitMessage& message = finding.message;
  if (message.file.empty()) return false;
  const Comments& comments = commentsOf(message.file);
  if (comments.everywhere.contains(finding.check)) return true;
  const auto line = comments.lines.find(message.line);
  return line != comments.lines.end() && line->second.contains(finding.check);
}

std::vector<Finding> AllowedFindings::unknown(const std::string& file) {
  std::vector<Finding> found;
  const std::vector<std::string> known = checkNames();
  for (const auto& [line, name] : commentsOf(file).all)
    if (std::find(known.begin(), known.end(), name) == known.end())
      found.push_back({"unknown-allow", {file, line, "no check is called '" + name + "'" + suggestion(name, known)}});
  return found;
}

const AllowedFindings::Comments& AllowedFindings::commentsOf(const std::string& file) {
  const auto [at, isNew] = files.try_emplace(file);
  Comments& comments = at->second;
  if (!isNew) return comments;
  const std::vector<uint8_t> bytes = readFile(file);
  std::istringstream text(std::string(bytes.begin(), bytes.end()));
  bool isTop = true;
  std::string line;
  for (int number = 1; std::getline(text, line); ++number) {
    const size_t marker = line.find(kAllow);
    const size_t comment = marker == std::string::npos ? marker : commentAt(line, marker);
    const bool isAlone = comment != std::string::npos && isBlank(std::string_view(line).substr(0, comment));
    if (!isAlone && !isBlank(line) && line[line.find_first_not_of(" \t")] != '#') isTop = false;
    if (comment == std::string::npos) continue;
    std::string list = line.substr(marker + kAllow.size());
    std::replace_if(
        list.begin(), list.end(), [](char c) { return c == ',' || c == '\r'; }, ' ');
    std::istringstream words(list);
    for (std::string name; words >> name;) {
      comments.all.emplace_back(number, name);
      if (isTop) comments.everywhere.insert(name);
      comments.lines[isAlone ? number + 1 : number].insert(name);
    }
  }
  return comments;
}
