#include "bob/compile/codenotes.h"

#include <algorithm>

// The innermost open block is the last one without an end.
void BobCodeNotes::closeBlock(int end, const std::vector<std::string>& names) {
  const auto open = std::find_if(blocks.rbegin(), blocks.rend(), [](const Block& block) { return block.end == 0; });
  open->end = end;
  open->names = names;
}
