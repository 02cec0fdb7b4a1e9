// The kinds of a source's tokens, for colours.
#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "kit/language/boboutline.h"

namespace {

using Token = BobTokenKind;
using Kind = BobNodeKind;

class Semantics {
 public:
  Semantics(const BobTree& t, const BobSymbols& s) : tree(t), symbols(s) {
    for (const BobFunctionInfo& function : symbols.functions)
      if (function.ofObject.empty()) functions.insert(function.name);
  }

  std::vector<BobSemanticToken> run() {
    std::vector<BobSemanticToken> list;
    size_t use = 0;
    for (const BobSourceToken& token : tree.tokens.all) {
      const uint32_t length = token.end - token.begin;
      while (use < symbols.uses.size() && symbols.uses[use].offset < token.begin) ++use;
      if (use < symbols.uses.size() && symbols.uses[use].offset == token.begin) {
        const BobUse& found = symbols.uses[use];
        list.push_back({token.begin, length, kindOf(found), found.isDefinition()});
        if (found.kind == BobUseKind::kMention) takeBackslash(&list.back());
        continue;
      }
      BobSemantic kind;
      if (kindOf(token, &kind)) list.push_back({token.begin, length, kind, false});
    }
    return list;
  }

 private:
  // The backslash right before a symbol belongs to it.
  void takeBackslash(BobSemanticToken* symbol) const {
    if (symbol->offset == 0 || tree.source[symbol->offset - 1] != '\\') return;
    --symbol->offset;
    ++symbol->length;
  }

  bool kindOf(const BobSourceToken& token, BobSemantic* kind) const {
    if (token.isComment()) return *kind = BobSemantic::kComment, true;
    switch (token.kind) {
      case Token::kString: return *kind = BobSemantic::kString, true;
      case Token::kInteger:
        return *kind = tree.source[token.begin] == '\'' ? BobSemantic::kString : BobSemantic::kNumber, true;
      case Token::kFloat: return *kind = BobSemantic::kNumber, true;
      case Token::kIdentifier: return *kind = BobSemantic::kVariable, true;  // a name that is nothing, as of a catch
      case Token::kNil: return *kind = BobSemantic::kConstant, true;
      default: break;
    }
    if (bobIsKeyword(token.kind)) return *kind = BobSemantic::kKeyword, true;
    *kind = BobSemantic::kOperator;
    if (token.kind >= Token::kString) return true;
    return token.kind != Token::kEnd &&
           std::string_view("=?+-*/%<>!~&|^").find(char(token.kind)) != std::string_view::npos;
  }

  BobSemantic kindOf(const BobUse& use) const {
    const BobSymbol& symbol = symbols.symbols[use.symbol];
    if (use.kind == BobUseKind::kMention) return BobSemantic::kSymbol;
    switch (symbol.kind) {
      case BobSymbolKind::kArgument: return BobSemantic::kParameter;
      case BobSymbolKind::kLocal: return BobSemantic::kVariable;
      case BobSymbolKind::kImplicit:
      case BobSymbolKind::kConstant: return BobSemantic::kConstant;
      case BobSymbolKind::kSelector: return isCalled(use.node) ? BobSemantic::kMethod : BobSemantic::kProperty;
      case BobSymbolKind::kGlobal: break;
    }
    return functions.contains(symbol.name) || isCalled(use.node) ? BobSemantic::kFunction : BobSemantic::kGlobal;
  }

  // Whether the name is of a function or method that is called or made there.
  bool isCalled(uint32_t node) const {
    uint32_t parent = tree.nodes[node].parent;
    if (parent != kBobNoNode && tree.nodes[parent].kind == Kind::kMember) {
      node = parent;
      parent = tree.nodes[node].parent;
    }
    if (parent == kBobNoNode) return false;
    const std::span<const uint32_t> list = tree.children(parent);
    switch (tree.nodes[parent].kind) {
      case Kind::kDefine: return list[list.size() - 3] == node;
      case Kind::kSuper: return true;
      case Kind::kPair: return list[0] == node && tree.nodes[list[1]].kind == Kind::kFunction;
      case Kind::kChain: break;
      default: return false;
    }
    size_t i = 0;
    if (tree.nodes[node].kind == Kind::kMember)
      i = size_t(std::lower_bound(list.begin(), list.end(), node) - list.begin());
    if (i + 1 < list.size()) return tree.nodes[list[i + 1]].kind == Kind::kCall;
    // x.y = function () {}
    const uint32_t around = tree.nodes[parent].parent;
    if (around == kBobNoNode || tree.nodes[around].kind != Kind::kAssign || tree.children(around)[0] != parent)
      return false;
    return tree.nodes[tree.children(around)[1]].kind == Kind::kFunction;
  }

  const BobTree& tree;
  const BobSymbols& symbols;
  std::unordered_set<std::string_view> functions;
};

}  // namespace

std::vector<BobSemanticToken> semanticTokensOf(const BobTree& tree, const BobSymbols& symbols) {
  return Semantics(tree, symbols).run();
}
