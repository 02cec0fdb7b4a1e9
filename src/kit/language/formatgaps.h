// What may stand between two tokens of a Bob source: nothing, a space or a line end, and where a line that begins there
// is indented to. It is all that the formatter decides; the tokens stay as they are.
//
// A gap is that before its token, comments included. The surprising rule: where a line may end, it does if the author
// has ended it there, so a source that has once been broken into lines keeps them.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/language/bobtree.h"

struct BobGap {
  static constexpr uint32_t kLeftEdge = UINT32_MAX;         // the anchor of what begins at the left
  static constexpr uint32_t kTokenBefore = UINT32_MAX - 1;  // the anchor where only a comment makes a line begin

  enum Mode : uint8_t {
    kJoined,      // nothing
    kSpace,       // a space
    kSoftJoined,  // a line end where the author has one, or where the line gets too long; otherwise nothing
    kSoft,        // likewise, otherwise a space
    kGroup,       // a line end if the group is broken; otherwise a space
    kLine,        // a line end
  };
  // Of a line that begins here.
  enum Indent : uint8_t {
    kFromLine,  // so much from the indentation of the line that `anchor` is in
    kAligned,   // to the column of `anchor`
    kOperand,   // likewise, but if `anchor` begins its line, so much from there
  };

  Mode mode = kSpace;
  Indent indent = kFromLine;
  uint8_t amount = 4;  // columns
  bool keepsBlankLine = false;
  uint32_t anchor = kTokenBefore;
  int weight = 0;  // where a line is too long, it is broken at the lightest gap
  uint32_t group = 0;
  uint8_t commentAmount = 0;  // what comments before the token are indented by beyond it
  uint32_t breaksWith = 0;    // a token: a line end in the gap before it brings one here; 0 for none
};

struct BobGaps {
  std::vector<BobGap> gaps;  // by token, in tokens.all; those of comments don't count
  // Gaps that get line ends together, those of the statements of a block or behind a label: whether they do.
  std::vector<bool> brokenGroups;
  std::vector<uint32_t> beginLine, endLine;  // of the source, by token: where it begins and ends
};

// Of a tree without errors.
BobGaps bobGapsOf(const BobTree& tree);
