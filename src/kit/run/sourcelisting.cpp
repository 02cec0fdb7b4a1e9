#include "kit/run/sourcelisting.h"

#include <sstream>
#include <utility>

#include "kit/files.h"

void SourceListing::begin(std::vector<BobCodeLines> all) {
  codes = std::move(all);
  byHash.clear();
  for (size_t i = codes.size(); i-- > 0;) byHash[codes[i].hash].push_back(i);
}

void SourceListing::instruction(BobInterp* interp, BobValue code, uint32_t offset) {
  if (offset == 0) {
    current = linesOf(interp, code);
    shownLine = 0;
  }
  if (!current) return;
  const int line = current->lineAt(offset);
  if (line == std::exchange(shownLine, line)) return;
  const std::vector<std::string>& text = textOf(current->file);
  bobPutText(bobStdout(interp), "; " + current->file + ":" + std::to_string(line) + "  " +
                                    (size_t(line) <= text.size() ? text[size_t(line) - 1] : "") + "\n");
}

const BobCodeLines* SourceListing::linesOf(BobInterp* interp, BobValue code) {
  const auto found = byHash.find(bobCodeHash(interp, code));
  if (found == byHash.end() || found->second.empty()) return nullptr;
  const size_t number = found->second.back();
  found->second.pop_back();
  return &codes[number];
}

const std::vector<std::string>& SourceListing::textOf(const std::string& file) {
  const auto [known, isNew] = texts.try_emplace(file);
  if (!isNew) return known->second;
  const std::vector<uint8_t> bytes = readFile(file);
  std::istringstream in(std::string(bytes.begin(), bytes.end()));
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    known->second.push_back(line);
  }
  return known->second;
}
