#include "kit/language/boboutline.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace {

using Kind = BobNodeKind;
using Items = std::vector<BobOutlineItem>;

class Outline {
 public:
  explicit Outline(const BobTree& t) : tree(t) {}

  Items run() {
    Items items;
    for (const uint32_t statement : tree.children(tree.root())) {
      if (tree.nodes[statement].kind != Kind::kExpression) {
        visit(statement, &items);
        continue;
      }
      const uint32_t expression = tree.children(statement)[0];
      if (tree.nodes[expression].kind == Kind::kComma)
        for (const uint32_t part : tree.children(expression)) topExpression(part, &items);
      else
        topExpression(expression, &items);
    }
    return items;
  }

 private:
  // A global shows where it is first assigned to.
  void topExpression(uint32_t node, Items* items) {
    if (tree.nodes[node].kind != Kind::kAssign || tree.nodes[tree.children(node)[0]].kind != Kind::kName)
      return visit(node, items);
    const uint32_t name = tree.children(node)[0], value = tree.children(node)[1];
    const Kind kind = tree.nodes[value].kind;
    if (kind == Kind::kFunction) return visit(node, items);
    if (!known.insert(tree.text(name)).second) return visit(value, items);
    const auto shown = kind == Kind::kObject ? BobOutlineItem::kObject : BobOutlineItem::kVariable;
    BobOutlineItem item = made(shown, std::string(tree.text(name)), node, name, name);
    visit(value, &item.children);
    items->push_back(std::move(item));
  }

  void visit(uint32_t node, Items* items) {
    const std::span<const uint32_t> list = tree.children(node);
    switch (tree.nodes[node].kind) {
      case Kind::kDefine: {
        const bool isMethod = list.size() > 3;
        const auto kind = isMethod ? BobOutlineItem::kMethod : BobOutlineItem::kFunction;
        if (tree.nodes[list[0]].kind == Kind::kMissing) break;
        return function(made(kind, textBetween(list[0], list[list.size() - 3]), node, list[0], list[list.size() - 3]),
                        node, items);
      }
      case Kind::kFunction: {
        if (list.size() != 3 || tree.nodes[list[0]].kind != Kind::kName) break;
        return function(made(BobOutlineItem::kFunction, std::string(tree.text(list[0])), node, list[0], list[0]), node,
                        items);
      }
      case Kind::kAssign: {
        if (tree.nodes[list[1]].kind != Kind::kFunction) break;
        const auto kind = tree.nodes[list[0]].kind == Kind::kName ? BobOutlineItem::kFunction : BobOutlineItem::kMethod;
        return function(made(kind, textBetween(list[0], list[0]), node, list[0], list[0]), list[1], items);
      }
      case Kind::kPair: {
        const bool isFunction = tree.nodes[list[1]].kind == Kind::kFunction;
        const auto kind = isFunction ? BobOutlineItem::kMethod : BobOutlineItem::kProperty;
        if (tree.nodes[list[0]].kind == Kind::kMissing) break;
        BobOutlineItem item = made(kind, std::string(tree.text(list[0])), node, list[0], list[0]);
        if (isFunction) return function(std::move(item), list[1], items);
        visit(list[1], &item.children);
        return items->push_back(std::move(item));
      }
      default: break;
    }
    for (const uint32_t child : list) visit(child, items);
  }

  void function(BobOutlineItem item, uint32_t node, Items* items) {
    const std::span<const uint32_t> list = tree.children(node);
    const uint32_t parameters = list[list.size() - 2];
    item.detail = "(";
    for (const uint32_t parameter : tree.children(parameters))
      item.detail += (item.detail == "(" ? "" : ", ") + std::string(tree.text(parameter));
    item.detail += ")";
    visit(list.back(), &item.children);
    items->push_back(std::move(item));
  }

  BobOutlineItem made(BobOutlineItem::Kind kind, std::string name, uint32_t whole, uint32_t first,
                      uint32_t last) const {
    return {kind,
            std::move(name),
            {},
            tree.nodes[whole].begin,
            tree.nodes[whole].end,
            tree.nodes[first].begin,
            tree.nodes[last].end,
            {}};
  }

  // Without white space and comments.
  std::string textBetween(uint32_t first, uint32_t last) const {
    std::string text;
    for (size_t i = tree.nodes[first].firstToken; i < tree.nodes[last].endToken; ++i)
      if (!tree.tokens.all[i].isComment()) text += tree.text(tree.tokens.all[i]);
    return text;
  }

  const BobTree& tree;
  std::unordered_set<std::string_view> known;
};

// -- folding

class Lines {
 public:
  explicit Lines(std::string_view source) {
    for (size_t end = source.find('\n'); end != std::string_view::npos; end = source.find('\n', end + 1))
      begins.push_back(end + 1);
  }
  size_t of(size_t offset) const {
    return size_t(std::upper_bound(begins.begin(), begins.end(), offset) - begins.begin());
  }

 private:
  std::vector<size_t> begins{0};
};

bool folds(Kind kind) {
  return kind == Kind::kBlock || kind == Kind::kObject || kind == Kind::kVector || kind == Kind::kCall ||
         kind == Kind::kParameters || kind == Kind::kParenthesis;
}

}  // namespace

std::vector<BobOutlineItem> outlineOf(const BobTree& tree) { return Outline(tree).run(); }

std::vector<BobFold> foldsOf(const BobTree& tree) {
  std::vector<BobFold> all;
  const Lines lines(tree.source);
  for (const BobNode& node : tree.nodes)
    if (folds(node.kind)) all.push_back({BobFold::kCode, node.begin, node.end});
  const BobSourceToken* before = nullptr;
  for (const BobSourceToken& token : tree.tokens.all) {
    const bool follows = before && token.kind == BobTokenKind::kLineComment && before->kind == token.kind &&
                         lines.of(token.begin) == lines.of(before->begin) + 1;
    if (follows)
      all.back().end = token.end;
    else if (token.isComment())
      all.push_back({BobFold::kComment, token.begin, token.end});
    before = &token;
  }
  // Of those that begin in one line the widest; a line comment behind code begins nothing.
  std::stable_sort(all.begin(), all.end(), [](const BobFold& a, const BobFold& b) { return a.begin < b.begin; });
  std::vector<BobFold> kept;
  for (const BobFold& fold : all) {
    if (lines.of(fold.begin) == lines.of(fold.end)) continue;
    if (!kept.empty() && lines.of(kept.back().begin) == lines.of(fold.begin)) {
      if (lines.of(fold.end) > lines.of(kept.back().end)) kept.back() = fold;
      continue;
    }
    kept.push_back(fold);
  }
  return kept;
}
