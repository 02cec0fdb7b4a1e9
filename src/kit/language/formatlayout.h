// Lays the tokens of a Bob source out in lines by their gaps, and breaks lines that get too long.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kit/language/formatgaps.h"

class BobLayout {
 public:
  // `gaps` are of the tree. Lines are broken to keep within `columns`, where they can be.
  BobLayout(const BobTree& t, BobGaps g, size_t most, std::string_view end)
      : tree(t), gaps(std::move(g)), columns(most), lineEnd(end), places(t.tokens.all.size()) {}
  std::string run();

 private:
  // Of a token that has been put.
  struct Place {
    size_t column = 0, lineIndent = 0;  // its line's indentation
    bool continues = false;             // the line goes on with what only a comment has cut
    size_t before = 0;                  // the size of the text before its gap
  };
  // Where a line might end.
  struct Break {
    uint32_t token;
    int weight;
  };
  struct TrailingComment {
    size_t at, column;  // in the text; of the code before it
    size_t line, width;
  };

  bool isBroken(uint32_t token) const;
  bool keepsBreak(uint32_t token) const;
  size_t newlinesBefore(uint32_t token) const {
    return token == 0 ? 0 : gaps.beginLine[token] - gaps.endLine[token - 1];
  }
  bool breaksBefore(uint32_t token, uint32_t owner);
  size_t indentOf(uint32_t owner, bool* continues) const;
  void put(uint32_t token, uint32_t owner);
  void newLine(uint32_t token, uint32_t owner);
  void space(uint32_t token, uint32_t owner);
  void putText(uint32_t token);
  void putBlockComment(std::string_view text);
  bool shorten(uint32_t* token);
  void backTo(uint32_t token);
  std::string aligned() const;

  const BobTree& tree;
  BobGaps gaps;
  size_t columns;
  std::string_view lineEnd;
  std::vector<Place> places;  // by token
  std::vector<bool> broken = std::vector<bool>(places.size());

  std::string text;
  size_t column = 0, lineIndent = 0, lines = 0;
  bool lineContinues = false;
  bool gapBroken = true;             // a line has begun since the last token that is no comment
  uint32_t last = UINT32_MAX;        // the last token that is no comment
  std::vector<Break> breaks;         // of the line
  std::vector<uint32_t> openGroups;  // tokens of the line before which a group has a gap, unbroken
  std::vector<TrailingComment> trailing;
};
