#include "kit/language/formatgaps.h"

#include <algorithm>

namespace {

using Token = BobTokenKind;
using Kind = BobNodeKind;
using Gap = BobGap;

constexpr uint8_t kStep = 2, kContinuation = 4;

class Gaps {
 public:
  explicit Gaps(const BobTree& t) : tree(t) {}

  BobGaps run() {
    findLines();
    out.gaps.resize(tree.tokens.all.size());
    uint32_t before = kBobNoNode;
    for (uint32_t token = 0; token < out.gaps.size(); ++token) {
      if (tree.tokens.all[token].isComment()) continue;
      if (before != kBobNoNode && joins(before, token)) gap(token).mode = Gap::kJoined;
      before = token;
    }
    const std::span<const uint32_t> statements = tree.children(tree.root());
    for (size_t i = 0; i < statements.size(); ++i) {
      beginStatement(statements[i], Gap::kLine, 0, Gap::kLeftEdge, 0);
      if (kindOf(statements[i]) == Kind::kEmpty && i > 0) gap(first(statements[i])).mode = Gap::kJoined;
      visit(statements[i]);
    }
    gap(uint32_t(out.gaps.size()) - 1) = {Gap::kLine, Gap::kFromLine, 0, true, Gap::kLeftEdge};
    return std::move(out);
  }

 private:
  Gap& gap(uint32_t token) { return out.gaps[token]; }
  uint32_t first(uint32_t node) const { return tree.nodes[node].firstToken; }
  uint32_t last(uint32_t node) const { return tree.nodes[node].endToken - 1; }
  Token kind(uint32_t token) const { return tree.tokens.all[token].kind; }
  Kind kindOf(uint32_t node) const { return tree.nodes[node].kind; }

  void findLines() {
    uint32_t line = 0;
    size_t at = 0;
    const auto lineAt = [&](size_t offset) {
      line += uint32_t(
          std::count(tree.source.begin() + std::ptrdiff_t(at), tree.source.begin() + std::ptrdiff_t(offset), '\n'));
      at = offset;
      return line;
    };
    for (const BobSourceToken& token : tree.tokens.all) {
      out.beginLine.push_back(lineAt(token.begin));
      out.endLine.push_back(lineAt(token.end));
    }
  }

  // By the two tokens alone.
  bool joins(uint32_t a, uint32_t b) const {
    switch (kind(b)) {
      case Token::kDot:
      case Token::kDotDot:  // 1 .x is not 1.x
        return kind(a) != Token::kInteger || tree.source[tree.tokens.all[a].begin] == '\'';
      case Token::kCloseParenthesis:
      case Token::kCloseBracket:
      case Token::kComma:
      case Token::kSemicolon: return true;
      default: break;
    }
    return kind(a) == Token::kOpenParenthesis || kind(a) == Token::kOpenBracket || kind(a) == Token::kBackslash ||
           kind(a) == Token::kDot;
  }

  // The next token that is no comment.
  uint32_t next(uint32_t token) const {
    do ++token;
    while (tree.tokens.all[token].isComment());
    return token;
  }
  // Of the node's own tokens behind its child; the separator of two children, as a rule.
  uint32_t behind(uint32_t child) const { return next(last(child)); }

  bool isOnOneLine(uint32_t begin, uint32_t end) const { return out.beginLine[begin] == out.endLine[end]; }

  uint32_t newGroup(bool broken) {
    out.brokenGroups.push_back(broken);
    return uint32_t(out.brokenGroups.size()) - 1;
  }

  // -- statements

  // The gap before a statement in a list. An empty one sticks to what is before it.
  void beginStatement(uint32_t statement, Gap::Mode mode, uint32_t group, uint32_t anchor, uint8_t amount) {
    Gap& g = gap(first(statement));
    g = {mode, Gap::kFromLine, amount, true, anchor};
    g.group = group;
  }

  // A statement that belongs to another one, whose first token is `owner`.
  void body(uint32_t statement, uint32_t owner, uint32_t group) {
    Gap& g = gap(first(statement));
    if (kindOf(statement) == Kind::kBlock) {
      g = {Gap::kSpace, Gap::kFromLine, 0, false, owner};
      return block(statement, owner, group);
    }
    g = {Gap::kSoft, Gap::kFromLine, kStep, false, owner};
    g.weight = depth * 10 - 5;
    if (kindOf(statement) == Kind::kEmpty) g.mode = Gap::kJoined;
    visit(statement);
  }

  // The blocks of an if and its else are broken together.
  void ifStatement(uint32_t node) {
    uint32_t begin = kBobNoNode, end = kBobNoNode;  // of the blocks, tokens
    for (uint32_t part = node; part != kBobNoNode;) {
      const std::span<const uint32_t> list = tree.children(part);
      part = kBobNoNode;
      for (const uint32_t statement : list.subspan(1)) {
        if (kindOf(statement) == Kind::kBlock) {
          if (begin == kBobNoNode) begin = first(statement);
          end = last(statement);
        }
        if (statement == list.back() && list.size() == 3 && kindOf(statement) == Kind::kIf) part = statement;
      }
    }
    ifChain(node, first(node), newGroup(begin != kBobNoNode && !isOnOneLine(begin, end)));
  }

  void ifChain(uint32_t node, uint32_t owner, uint32_t group) {
    const std::span<const uint32_t> list = tree.children(node);
    condition(list[0]);
    body(list[1], owner, group);
    if (list.size() < 3) return;
    const uint32_t word = behind(list[1]);
    Gap& g = gap(word);
    g = {kindOf(list[1]) == Kind::kBlock ? Gap::kSpace : Gap::kSoft, Gap::kFromLine, 0, false, owner};
    g.weight = depth * 10 - 6;
    if (g.mode == Gap::kSoft) g.breaksWith = first(list[1]);
    if (kindOf(list[2]) == Kind::kIf) {
      gap(first(list[2])) = {Gap::kSpace, Gap::kFromLine, 0, false, owner};
      return ifChain(list[2], owner, group);
    }
    body(list[2], owner, group);
    if (kindOf(list[2]) != Kind::kBlock && kindOf(list[2]) != Kind::kEmpty) gap(first(list[2])).weight = depth * 10 - 4;
  }

  // In parentheses.
  void condition(uint32_t expression) {
    ++depth;
    Gap& g = gap(first(expression));
    const uint32_t opener = before(first(expression));
    g = {Gap::kSoftJoined, Gap::kFromLine, kContinuation, false, opener};
    g.weight = depth * 10 + 5;
    visit(expression);
    --depth;
  }

  uint32_t before(uint32_t token) const {
    do --token;
    while (tree.tokens.all[token].isComment());
    return token;
  }

  void forStatement(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    ++depth;
    const uint32_t opener = next(first(node));
    const uint32_t begin = next(opener);
    for (size_t part = 0; part < 3; ++part) {
      const std::span<const uint32_t> expressions = tree.children(list[part]);
      for (size_t i = 0; i < expressions.size(); ++i) {
        if (part > 0 || i > 0) softAligned(first(expressions[i]), begin);
        visit(expressions[i]);
      }
    }
    --depth;
    body(list[3], first(node), newGroup(isBroken(list[3])));
  }

  bool isBroken(uint32_t statement) const { return !isOnOneLine(first(statement), last(statement)); }

  void doStatement(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    body(list[0], first(node), newGroup(isBroken(list[0])));
    const uint32_t word = behind(list[0]);
    const bool isBlock = kindOf(list[0]) == Kind::kBlock;
    gap(word) = {isBlock ? Gap::kSpace : Gap::kSoft, Gap::kFromLine, 0, false, first(node)};
    if (!isBlock) gap(word).breaksWith = first(list[0]);
    gap(word).weight = depth * 10 - 6;
    condition(list[1]);
  }

  void tryStatement(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    const uint32_t group = newGroup(!isOnOneLine(first(list.front()), last(list.back())));
    for (const uint32_t part : list) {
      const uint32_t blockNode = kindOf(part) == Kind::kBlock ? part : tree.children(part).back();
      gap(first(part)) = {Gap::kSpace, Gap::kFromLine, 0, false, first(node)};
      body(blockNode, first(node), group);
    }
  }

  void block(uint32_t node, uint32_t owner, uint32_t group) {
    const std::span<const uint32_t> list = tree.children(node);
    Gap& close = gap(last(node));
    close = {Gap::kGroup, Gap::kFromLine, 0, true, owner, 0, group, kStep};
    if (list.empty() && next(first(node)) == first(node) + 1) close.mode = Gap::kJoined;
    for (size_t i = 0; i < list.size();) {
      if (isLabel(list[i])) {
        i = labelled(list, i, owner, group);
        continue;
      }
      beginStatement(list[i], Gap::kGroup, group, owner, kStep);
      if (kindOf(list[i]) == Kind::kEmpty && i > 0) gap(first(list[i])).mode = Gap::kJoined;
      visit(list[i]);
      ++i;
    }
  }

  bool isLabel(uint32_t statement) const {
    return kindOf(statement) == Kind::kCase || kindOf(statement) == Kind::kDefault;
  }

  // Labels and the statements behind them, up to the next label: on one line if the author has them so.
  size_t labelled(std::span<const uint32_t> list, size_t begin, uint32_t owner, uint32_t group) {
    size_t end = begin;
    while (end < list.size() && isLabel(list[end])) ++end;
    const size_t statements = end;
    while (end < list.size() && !isLabel(list[end])) ++end;
    bool broken = end - statements > 1 && !isOnOneLine(first(list[begin]), last(list[end - 1]));
    for (size_t i = begin + 1; i < end; ++i) broken |= out.endLine[last(list[i - 1])] != out.beginLine[first(list[i])];
    const uint32_t row = newGroup(broken);
    for (size_t i = begin; i < end; ++i) {
      if (i == begin)
        beginStatement(list[i], Gap::kGroup, group, owner, kStep);
      else if (isLabel(list[i]))
        beginStatement(list[i], Gap::kGroup, row, first(list[begin]), 0);
      else
        beginStatement(list[i], Gap::kGroup, row, first(list[begin]), kStep);
      if (kindOf(list[i]) == Kind::kEmpty) gap(first(list[i])).mode = Gap::kJoined;
      visit(list[i]);
    }
    return end;
  }

  // -- lists and operators

  void softAligned(uint32_t token, uint32_t anchor) {
    gap(token) = {Gap::kSoft, Gap::kAligned, 0, false, anchor};
    gap(token).weight = depth * 10;
  }

  // Elements between an opening token and a closing one, with commas between them.
  void elements(uint32_t opener, std::span<const uint32_t> list, uint32_t closer) {
    ++depth;
    if (!list.empty()) {
      const bool spaced = kind(opener) == Token::kOpenBrace;
      Gap& begin = gap(first(list[0]));
      begin = {spaced ? Gap::kSoft : Gap::kSoftJoined, Gap::kFromLine, kStep, false, opener};
      begin.weight = depth * 10 + 5;
      Gap& end = gap(closer);
      end = {spaced ? Gap::kSoft : Gap::kSoftJoined, Gap::kFromLine, 0, false, opener, 0, 0, kStep};
      end.weight = kNever;
    } else if (next(opener) == opener + 1) {
      gap(closer).mode = Gap::kJoined;
    }
    for (size_t i = 0; i < list.size(); ++i) {
      if (i > 0) softAligned(first(list[i]), first(list[0]));
      visit(list[i]);
    }
    --depth;
  }

  void operands(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    ++depth;
    for (size_t i = 0; i < list.size(); ++i) {
      if (i > 0) softOperand(first(list[i]), first(node));
      visit(list[i]);
    }
    --depth;
  }

  void softOperand(uint32_t token, uint32_t anchor) {
    gap(token) = {Gap::kSoft, Gap::kOperand, kContinuation, false, anchor};
    gap(token).weight = depth * 10;
  }

  void conditional(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    ++depth;
    visit(list[0]);
    for (size_t i = 1; i < 3; ++i) {
      softOperand(behind(list[i - 1]), first(node));
      visit(list[i]);
    }
    --depth;
  }

  void value(uint32_t target, uint32_t expression) {
    Gap& g = gap(first(expression));
    g = {Gap::kSoft, Gap::kFromLine, kContinuation, false, first(target)};
    g.weight = depth * 10 + kLastResort;
    visit(expression);
  }

  void chain(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    visit(list[0]);
    for (const uint32_t link : list.subspan(1)) {
      Gap& g = gap(first(link));
      if (kindOf(link) == Kind::kMember) {
        if (g.mode != Gap::kJoined) {
          visit(link);
          continue;
        }
        g = {Gap::kSoftJoined, Gap::kFromLine, kContinuation, false, first(node)};
        g.weight = depth * 10 + kLastResort / 2;
      } else {
        g.mode = Gap::kJoined;
      }
      visit(link);
    }
  }

  // -- functions

  // Parameters and body, the last two children.
  void function(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    const uint32_t parameters = list[list.size() - 2], blockNode = list.back();
    const bool isNamed = list.size() > 2 && kindOf(list[0]) != Kind::kString;
    gap(first(parameters)).mode = isNamed ? Gap::kJoined : Gap::kSpace;
    elements(first(parameters), tree.children(parameters), last(parameters));
    body(blockNode, first(node), newGroup(isBroken(blockNode)));
  }

  void visitChildren(uint32_t node) {
    for (const uint32_t child : tree.children(node)) visit(child);
  }

  void visit(uint32_t node) {
    const std::span<const uint32_t> list = tree.children(node);
    switch (kindOf(node)) {
      case Kind::kBlock: return block(node, first(node), newGroup(isBroken(node)));
      case Kind::kLocals: {
        ++depth;
        for (size_t i = 0; i < list.size(); ++i) {
          if (i > 0) softAligned(first(list[i]), first(list[0]));
          visit(list[i]);
        }
        --depth;
        return;
      }
      case Kind::kVariable:
      case Kind::kParameter:
        if (list.size() > 1) value(list[0], list[1]);
        return;
      case Kind::kDefine:
      case Kind::kFunction: return function(node);
      case Kind::kIf: return ifStatement(node);
      case Kind::kWhile:
      case Kind::kSwitch: condition(list[0]); return body(list[1], first(node), newGroup(isBroken(list[1])));
      case Kind::kDo: return doStatement(node);
      case Kind::kFor: return forStatement(node);
      case Kind::kTry: return tryStatement(node);
      case Kind::kCase:
      case Kind::kDefault: gap(last(node)).mode = Gap::kJoined; return;
      case Kind::kComma:
      case Kind::kOr:
      case Kind::kAnd:
      case Kind::kBinary: return operands(node);
      case Kind::kConditional: return conditional(node);
      case Kind::kAssign: visit(list[0]); return value(list[0], list[1]);
      case Kind::kPrefix: {
        const std::string_view source = tree.source;
        const uint32_t operand = first(list[0]);
        const bool merges = source[tree.tokens.all[first(node)].begin] == source[tree.tokens.all[operand].begin];
        gap(operand).mode = merges ? Gap::kSpace : Gap::kJoined;
        return visit(list[0]);
      }
      case Kind::kChain: return chain(node);
      case Kind::kCall: gap(first(node)).mode = Gap::kJoined; return elements(first(node), list, last(node));
      case Kind::kIndex:
      case Kind::kParenthesis: return elements(first(node), list, last(node));
      case Kind::kVector:
      case Kind::kObject: return literal(node);
      case Kind::kPair: gap(behind(list[0])).mode = Gap::kJoined; return value(list[0], list[1]);
      default: return visitChildren(node);
    }
  }

  // The parent of an object and its first pair have no comma between them.
  void literal(uint32_t node) { elements(next(first(node)), tree.children(node), last(node)); }

  static constexpr int kLastResort = 1000, kNever = 1000000;

  const BobTree& tree;
  BobGaps out;
  int depth = 1;
};

}  // namespace

BobGaps bobGapsOf(const BobTree& tree) { return Gaps(tree).run(); }
