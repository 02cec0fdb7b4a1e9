#include "kit/language/knownobject.h"

std::string bobKindOf(const BobTree& tree, uint32_t node) {
  const std::span<const uint32_t> list = tree.children(node);
  const bool beginsWithName = !list.empty() && tree.nodes[list[0]].kind == BobNodeKind::kName;
  switch (tree.nodes[node].kind) {
    case BobNodeKind::kString: return "String";
    case BobNodeKind::kVector: return "Vector";
    case BobNodeKind::kSymbol: return "Symbol";
    case BobNodeKind::kFunction: return "Method";
    case BobNodeKind::kNumber:
      return tree.tokens.all[tree.nodes[node].firstToken].kind == BobTokenKind::kFloat ? "Float" : "Integer";
    case BobNodeKind::kObject: return beginsWithName ? std::string(tree.text(list[0])) : "Object";
    case BobNodeKind::kNew: return beginsWithName ? std::string(tree.text(list[0])) : std::string();
    case BobNodeKind::kParenthesis: return bobKindOf(tree, list[0]);
    default: return {};
  }
}
