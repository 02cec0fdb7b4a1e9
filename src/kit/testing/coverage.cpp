#include "kit/testing/coverage.h"

#include <algorithm>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::string nameOf(const std::string& file) { return fs::absolute(file).lexically_normal().generic_string(); }

using Lines = std::map<int, uint64_t>;

size_t ranOf(const Lines& lines) {
  return size_t(std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.second > 0; }));
}

std::string share(size_t ran, size_t all) { return std::to_string(ran) + " of " + std::to_string(all) + " lines"; }

// Lines with code that didn't run, those that follow each other without a gap together: "12, 30 to 32".
std::string missed(const Lines& lines) {
  std::string text;
  for (auto at = lines.begin(); at != lines.end(); ++at) {
    if (at->second > 0) continue;
    const int first = at->first;
    while (std::next(at) != lines.end() && std::next(at)->second == 0 && std::next(at)->first == at->first + 1) ++at;
    text += (text.empty() ? "" : ", ") + std::to_string(first);
    if (at->first != first) text += " to " + std::to_string(at->first);
  }
  return text;
}

}  // namespace

void CoveredLines::add(const BobCoverage& ran, const CodePlaces& known) {
  for (const auto& [file, lines] : ran.lines())
    for (const auto& [line, count] : lines) files[nameOf(file)][line] += count;
  known.forEach([&](const BobCodeLines& code) {
    Lines& lines = files[nameOf(code.file)];
    for (const BobCodeLines::Start& start : code.firstStarts()) lines.try_emplace(start.line, 0);
  });
}

void CoveredLines::add(const CoveredLines& other) {
  for (const auto& [file, lines] : other.files)
    for (const auto& [line, count] : lines) files[file][line] += count;
}

std::string CoveredLines::asLcov() const {
  std::string text = "TN:kpg test\n";
  for (const auto& [file, lines] : files) {
    text += "SF:" + file + "\n";
    for (const auto& [line, count] : lines) text += "DA:" + std::to_string(line) + "," + std::to_string(count) + "\n";
    text += "LF:" + std::to_string(lines.size()) + "\nLH:" + std::to_string(ranOf(lines)) + "\nend_of_record\n";
  }
  return text;
}

std::string CoveredLines::summary() const {
  std::string text;
  size_t ran = 0, all = 0;
  for (const auto& [file, lines] : files) {
    const std::string rest = missed(lines);
    text += fs::path(file).filename().string() + ": " + share(ranOf(lines), lines.size());
    text += (rest.empty() ? "" : ", not " + rest) + "\n";
    ran += ranOf(lines);
    all += lines.size();
  }
  const std::string percent = all > 0 ? " (" + std::to_string(100 * ran / all) + " %)" : "";
  return text + "scripts: " + share(ran, all) + percent + "\n";
}
