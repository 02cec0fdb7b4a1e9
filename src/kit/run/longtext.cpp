#include "kit/run/longtext.h"

#include <sstream>

std::vector<std::string> linesOf(std::string_view text) {
  std::istringstream in{std::string(text)};
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string cutInTheMiddle(std::string_view text, const std::string& where) {
  constexpr size_t kFirst = 12, kLast = 4;
  const std::vector<std::string> lines = linesOf(text);
  std::string out;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i == kFirst && lines.size() > kFirst + kLast + 1) {
      const size_t left = lines.size() - kFirst - kLast;
      out += "  ... " + std::to_string(left) + " more lines" + where + " ...\n";
      i += left;
    }
    out += lines[i] + "\n";
  }
  return out;
}
