// A text that an editor has open, and its places: the editor counts lines and UTF-16 units from 0, everything else in
// the kit counts bytes.
//
// A place beyond the end of a line, or of the text, means that end: an editor and the server may differ for a moment.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct TextPosition {
  int line = 0, character = 0;  // from 0; UTF-16 units

  bool operator==(const TextPosition&) const = default;
};

struct TextRange {
  TextPosition begin, end;
};

class EditedText {
 public:
  explicit EditedText(std::string text = {});

  const std::string& text() const { return all; }
  size_t lineCount() const { return begins.size(); }  // one at least
  std::string_view line(size_t number) const;         // from 0; without its end; empty beyond the last
  size_t lineBegin(size_t number) const { return begins[number]; }

  size_t offsetOf(TextPosition position) const;
  TextPosition positionOf(size_t offset) const;
  TextRange rangeOf(size_t begin, size_t end) const { return {positionOf(begin), positionOf(end)}; }
  // A line from its first character that is no blank to its last.
  TextRange rangeOfLine(size_t number) const;

  void replace(const TextRange& range, std::string_view with);

 private:
  void findLines();

  std::string all;
  std::vector<size_t> begins;  // of lines
};
