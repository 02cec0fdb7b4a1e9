#include "kit/lsp/editedtext.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace {

// Bytes of the letter that begins there; a byte that begins none is taken as one.
size_t letterSize(std::string_view text, size_t at) {
  const auto first = uint8_t(text[at]);
  const size_t size = first < 0xC2 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 1;
  return std::min(size, text.size() - at);
}

int unitsOf(size_t letterSize) { return letterSize == 4 ? 2 : 1; }

}  // namespace

EditedText::EditedText(std::string text) : all(std::move(text)) { findLines(); }

void EditedText::findLines() {
  begins.assign(1, 0);
  for (size_t i = 0; i < all.size(); ++i) {
    if (all[i] != '\n' && all[i] != '\r') continue;
    if (all[i] == '\r' && i + 1 < all.size() && all[i + 1] == '\n') ++i;
    begins.push_back(i + 1);
  }
}

std::string_view EditedText::line(size_t number) const {
  if (number >= begins.size()) return {};
  const size_t end = number + 1 < begins.size() ? begins[number + 1] : all.size();
  std::string_view text = std::string_view(all).substr(begins[number], end - begins[number]);
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  return text;
}

size_t EditedText::offsetOf(TextPosition position) const {
  if (position.line < 0) return 0;
  if (size_t(position.line) >= begins.size()) return all.size();
  const std::string_view text = line(size_t(position.line));
  size_t at = 0;
  for (int units = 0; at < text.size() && units < position.character; at += letterSize(text, at))
    units += unitsOf(letterSize(text, at));
  return begins[size_t(position.line)] + at;
}

TextPosition EditedText::positionOf(size_t offset) const {
  offset = std::min(offset, all.size());
  const auto next = std::upper_bound(begins.begin(), begins.end(), offset);
  const size_t number = size_t(next - begins.begin()) - 1;
  const std::string_view text = line(number);
  const size_t inLine = std::min(offset - begins[number], text.size());
  int units = 0;
  for (size_t at = 0; at < inLine; at += letterSize(text, at)) units += unitsOf(letterSize(text, at));
  return {int(number), units};
}

TextRange EditedText::rangeOfLine(size_t number) const {
  number = std::min(number, begins.size() - 1);
  const std::string_view text = line(number);
  const size_t first = std::min(text.find_first_not_of(" \t"), text.size());
  const size_t last = text.find_last_not_of(" \t") + 1;
  return rangeOf(begins[number] + first, begins[number] + std::max(first, last));
}

void EditedText::replace(const TextRange& range, std::string_view with) {
  const size_t begin = offsetOf(range.begin), end = std::max(begin, offsetOf(range.end));
  all.replace(begin, end - begin, with);
  findLines();
}
