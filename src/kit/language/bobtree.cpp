#include "kit/language/bobtree.h"

#include <algorithm>

#include "kit/language/bobparser.h"

namespace {

// True if the source ended in a block.
bool parse(BobTree* tree, bool closeAtDefinitions) {
  tree->nodes.clear();
  tree->childIndices.clear();
  tree->errors.clear();
  BobParser parser(tree, closeAtDefinitions);
  parser.run();
  return parser.endedInBlock;
}

}  // namespace

uint32_t BobTree::nodeAt(size_t offset) const {
  uint32_t node = root();
  for (;;) {
    const std::span<const uint32_t> list = children(node);
    // The last child that doesn't begin behind the offset; children lie in the source's order.
    const auto after = std::upper_bound(list.begin(), list.end(), offset,
                                        [&](size_t place, uint32_t child) { return place < nodes[child].begin; });
    if (after == list.begin() || nodes[*(after - 1)].end < offset) return node;
    node = *(after - 1);
  }
}

BobTree parseBob(std::string_view source) {
  BobTree tree;
  tree.source = source;
  tree.tokens = bobTokensOf(source);
  if (tree.tokens.unclosedString) tree.tokens = bobTokensOf(source, true);
  if (parse(&tree, false)) parse(&tree, true);
  return tree;
}
