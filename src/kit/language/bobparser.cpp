// Tokens, nodes and errors.
#include "kit/language/bobparser.h"

#include <algorithm>
#include <utility>

BobTokenKind BobParser::peek() {
  const std::vector<BobLexicalError>& errors = tree.tokens.errors;
  for (; lexical < errors.size() && errors[lexical].token <= at; ++lexical) {
    const BobSourceToken& token = tree.tokens.all[errors[lexical].token];
    report(token.begin, token.end - token.begin, errors[lexical].text);
  }
  return tree.tokens.all[at].kind;
}

void BobParser::advance() {
  if (tree.tokens.all[at].kind == Token::kEnd) return;
  consumed = ++at;
  while (tree.tokens.all[at].isComment()) ++at;
}

bool BobParser::accept(Token kind) {
  if (peek() != kind) return false;
  advance();
  return true;
}

// Whether the next token stands on a later line than the one before it.
bool BobParser::startsLine() const {
  if (consumed == 0) return true;
  const uint32_t before = tree.tokens.all[consumed - 1].end;
  return tree.source.substr(before, tree.tokens.all[at].begin - before).find('\n') != std::string_view::npos;
}

// -- nodes

void BobParser::finish(Node kind, const Start& from) {
  const std::vector<BobSourceToken>& tokens = tree.tokens.all;
  const size_t end = std::max(consumed, from.token);
  const uint32_t begin = tokens[from.token].begin;
  BobNode node{kind,
               begin,
               end > from.token ? tokens[end - 1].end : begin,
               uint32_t(from.token),
               uint32_t(end),
               kBobNoNode,
               uint32_t(tree.childIndices.size()),
               uint32_t(stack.size() - from.mark)};
  const auto number = uint32_t(tree.nodes.size());
  for (size_t i = from.mark; i < stack.size(); ++i) {
    tree.nodes[stack[i]].parent = number;
    tree.childIndices.push_back(stack[i]);
  }
  tree.nodes.push_back(node);
  stack.resize(from.mark);
  stack.push_back(number);
}

// The next token as a node.
void BobParser::leaf(Node kind) {
  const Start from = start();
  advance();
  finish(kind, from);
}

void BobParser::name(Node kind) {
  if (peek() == Token::kIdentifier) return leaf(kind);
  failFound(Token::kIdentifier);
  missing();
}

// -- errors

void BobParser::report(uint32_t offset, uint32_t length, std::string text) {
  if (reported.insert(offset).second) tree.errors.push_back({offset, length, std::move(text)});
}

// At the next token.
void BobParser::fail(std::string text) {
  const BobSourceToken& token = tree.tokens.all[at];
  report(token.begin, token.end - token.begin, std::move(text));
}

// At the token before it.
void BobParser::failBefore(std::string text) {
  const BobSourceToken& token = tree.tokens.all[consumed == 0 ? at : consumed - 1];
  report(token.begin, token.end - token.begin, std::move(text));
}

void BobParser::refuseNesting() {
  failBefore(kBobNestedTooDeep);
  skipToStop(Token::kEnd);
}

void BobParser::failFound(Token expected) {
  peek();
  const BobSourceToken wanted{expected, 0, 0};
  const char character = char(expected);
  const std::string_view text(&character, expected < Token::kString ? 1 : 0);
  fail("Expecting '" + bobNameOfToken(text, wanted) + "', found '" + bobNameOfToken(tree.source, tree.tokens.all[at]) +
       "'");
}

// What isn't there is taken to be there.
bool BobParser::expect(Token kind) {
  if (accept(kind)) return true;
  failFound(kind);
  return false;
}

void BobParser::expectCloser(Token kind) {
  if (expect(kind) || (peek() == Token::kOpenBrace && kind == Token::kCloseParenthesis)) return;
  skipToStop(kind);
  if (peek() == kind) advance();
}

void BobParser::endStatement() {
  if (expect(Token::kSemicolon) || startsLine()) return;
  skipToStop(Token::kEnd);
  if (peek() == Token::kSemicolon) advance();
}

// Up to what ends a statement or begins one on a line of its own, or to `closer`; what stands in brackets is passed
// over as a whole.
void BobParser::skipToStop(Token closer) {
  std::vector<Token> open;
  for (;; advance()) {
    const Token kind = peek();
    if (kind == Token::kEnd || closesAllBlocks()) return;
    if (open.empty() && (kind == closer || stops(kind))) return;
    if (kind == Token::kSemicolon && open.back() != Token::kCloseBrace) return;
    if (kind == Token::kOpenParenthesis) open.push_back(Token::kCloseParenthesis);
    if (kind == Token::kOpenBracket) open.push_back(Token::kCloseBracket);
    if (kind == Token::kOpenBrace) open.push_back(Token::kCloseBrace);
    if (kind != Token::kCloseParenthesis && kind != Token::kCloseBracket && kind != Token::kCloseBrace) continue;
    while (!open.empty() && open.back() != kind) {
      // A brace closes what was left open in it; any other closer has lost its partner.
      if (kind != Token::kCloseBrace) break;
      open.pop_back();
    }
    if (open.empty()) return;
    if (open.back() == kind) open.pop_back();
  }
}

bool BobParser::stops(Token kind) const {
  switch (kind) {
    case Token::kSemicolon:
    case Token::kCloseBrace: return true;
    case Token::kDefine:
    case Token::kLocal:
    case Token::kIf:
    case Token::kWhile:
    case Token::kDo:
    case Token::kFor:
    case Token::kReturn:
    case Token::kBreak:
    case Token::kContinue:
    case Token::kSwitch:
    case Token::kCase:
    case Token::kDefault:
    case Token::kTry:
    case Token::kThrow: return startsLine();
    case Token::kFunction: return beginsColumn();
    default: return false;
  }
}

// Whether the next token stands at the very beginning of a line.
bool BobParser::beginsColumn() const {
  const uint32_t begin = tree.tokens.all[at].begin;
  return begin == 0 || tree.source[begin - 1] == '\n';
}

bool BobParser::closesAllBlocks() const {
  const Token kind = tree.tokens.all[at].kind;
  return closeAtDefinitions && blocks > 0 && (kind == Token::kDefine || kind == Token::kFunction) && beginsColumn();
}
