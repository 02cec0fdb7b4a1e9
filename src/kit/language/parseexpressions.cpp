// Expressions, from the comma down to literals.
#include <initializer_list>
#include <iterator>

#include "kit/language/bobparser.h"

namespace {

using Token = BobTokenKind;

// The levels of binary operators, the loosest first.
constexpr std::initializer_list<Token> kLevels[] = {
    {bobTokenOf('|')},
    {bobTokenOf('^')},
    {bobTokenOf('&')},
    {Token::kEqual, Token::kNotEqual},
    {bobTokenOf('<'), Token::kLessEqual, Token::kGreaterEqual, bobTokenOf('>')},
    {Token::kShiftLeft, Token::kShiftRight},
    {bobTokenOf('+'), bobTokenOf('-')},
    {bobTokenOf('*'), bobTokenOf('/'), bobTokenOf('%')},
};

bool contains(std::initializer_list<Token> list, Token kind) {
  for (const Token each : list)
    if (each == kind) return true;
  return false;
}

bool isAssignment(Token kind) {
  return kind == Token::kAssign || (kind >= Token::kAddAssign && kind <= Token::kShiftRightAssign);
}

}  // namespace

void BobParser::expression() {
  const Start from = start();
  const Nested nested(this);
  if (!nested.ok) return missing();
  assignment();
  if (peek() != Token::kComma) return;
  while (accept(Token::kComma)) assignment();
  finish(Node::kComma, from);
}

BobParser::Place BobParser::assignment() {
  const Start from = start();
  const Nested nested(this);
  if (!nested.ok) return missing(), Place::kPlace;
  const Place place = conditional();
  if (!isAssignment(peek())) return place;
  const size_t behind = consumed;
  needPlace(place, from);
  advance();
  assignment();
  storeInto(place, from, behind);
  finish(Node::kAssign, from);
  return Place::kValue;
}

// Both arms take commas with them.
BobParser::Place BobParser::conditional() {
  const Start from = start();
  const Place place = logicalOr();
  if (!accept(Token::kQuestion)) return place;
  expression();
  expect(Token::kColon);
  expression();
  finish(Node::kConditional, from);
  return Place::kValue;
}

BobParser::Place BobParser::logicalOr() {
  const Start from = start();
  const Place place = logicalAnd();
  if (peek() != Token::kOr) return place;
  while (accept(Token::kOr)) logicalAnd();
  finish(Node::kOr, from);
  return Place::kValue;
}

BobParser::Place BobParser::logicalAnd() {
  const Start from = start();
  const Place place = binary(0);
  if (peek() != Token::kAnd) return place;
  while (accept(Token::kAnd)) binary(0);
  finish(Node::kAnd, from);
  return Place::kValue;
}

BobParser::Place BobParser::binary(size_t level) {
  if (level == std::size(kLevels)) return prefix();
  const Start from = start();
  const Place place = binary(level + 1);
  if (!contains(kLevels[level], peek())) return place;
  while (contains(kLevels[level], peek())) {
    advance();
    binary(level + 1);
  }
  finish(Node::kBinary, from);
  return Place::kValue;
}

BobParser::Place BobParser::prefix() {
  const Start from = start();
  const Nested nested(this);
  if (!nested.ok) return missing(), Place::kPlace;
  const Token kind = peek();
  const bool steps = kind == Token::kIncrement || kind == Token::kDecrement;
  if (!steps && !contains({bobTokenOf('!'), bobTokenOf('-'), bobTokenOf('~')}, kind)) return postfix();
  advance();
  const Start operand = start();
  const Place place = prefix();
  if (steps) {
    needPlace(place, operand);
    storeInto(place, operand, consumed);
  }
  finish(Node::kPrefix, from);
  return Place::kValue;
}

BobParser::Place BobParser::postfix() {
  const Start from = start();
  Place place = primary();
  if (!link(from, &place)) return place;
  while (link(from, &place)) {
  }
  finish(Node::kChain, from);
  return place;
}

// One link of a chain; false if there is none.
bool BobParser::link(const Start& chain, Place* place) {
  switch (peek()) {
    case Token::kOpenParenthesis:
      call();
      *place = Place::kValue;
      return true;
    case Token::kDot:
      member();
      *place = Place::kPlace;
      return true;
    case Token::kOpenBracket: {
      const Start from = start();
      advance();
      expression();
      expectCloser(Token::kCloseBracket);
      finish(Node::kIndex, from);
      *place = Place::kPlace;
      return true;
    }
    case Token::kIncrement:
    case Token::kDecrement: {
      const size_t behind = consumed;
      needPlace(*place, chain);
      leaf(Node::kStep);
      storeInto(*place, chain, behind);
      *place = Place::kValue;
      return true;
    }
    default: return false;
  }
}

void BobParser::member() {
  const Start from = start();
  expect(Token::kDot);
  selector();
  finish(Node::kMember, from);
}

void BobParser::call() {
  const Start from = start();
  expect(Token::kOpenParenthesis);
  list(Token::kCloseParenthesis);
  finish(Node::kCall, from);
}

void BobParser::selector() {
  if (peek() == Token::kOpenParenthesis) return parenthesis();
  if (peek() == Token::kIdentifier) return leaf(Node::kSelector);
  fail("Expecting a property selector");
  missing();
}

// After its opening bracket: expressions without commas, up to and with the closing one.
void BobParser::list(Token closer) {
  if (accept(closer)) return;
  do assignment();
  while (accept(Token::kComma));
  expectCloser(closer);
}

BobParser::Place BobParser::primary() {
  const Start from = start();
  switch (peek()) {
    case Token::kInteger:
    case Token::kFloat: leaf(Node::kNumber); break;
    case Token::kString: leaf(Node::kString); break;
    case Token::kNil: leaf(Node::kNil); break;
    case Token::kIdentifier: {
      const std::string_view text = tree.text(tree.tokens.all[at]);
      leaf(Node::kName);
      return text == "true" || text == "false" ? Place::kConstant : Place::kPlace;
    }
    case Token::kOpenParenthesis: parenthesis(); break;
    case Token::kOpenBrace: block(); break;
    case Token::kFunction:
      functionLiteral();
      finish(Node::kFunction, from);
      break;
    case Token::kSuper:
      superSend();
      finish(Node::kSuper, from);
      break;
    case Token::kNew:
      newObject();
      finish(Node::kNew, from);
      break;
    case Token::kBackslash: literal(); break;
    default:
      fail("Expecting a primary expression");
      missing();
      return Place::kPlace;  // no second complaint
  }
  return Place::kValue;
}

void BobParser::parenthesis() {
  const Start from = start();
  advance();
  expression();
  expectCloser(Token::kCloseParenthesis);
  finish(Node::kParenthesis, from);
}

void BobParser::functionLiteral() {
  advance();
  if (peek() == Token::kIdentifier)
    leaf(Node::kName);
  else if (peek() == Token::kString)
    leaf(Node::kString);
  function();
}

void BobParser::superSend() {
  if (functions == 0 && (ownThis == 0 || ownNext == 0)) fail("Use of super outside of a method");
  advance();
  member();
  call();
}

void BobParser::newObject() {
  advance();
  if (peek() == Token::kIdentifier) {
    leaf(Node::kName);
  } else if (peek() == Token::kOpenParenthesis) {
    parenthesis();
  } else {
    fail("Expecting an object expression");
    missing();
  }
  if (peek() == Token::kOpenParenthesis) call();
}

void BobParser::literal() {
  const Start from = start();
  advance();
  if (accept(Token::kOpenBracket)) {
    list(Token::kCloseBracket);
    return finish(Node::kVector, from);
  }
  if (accept(Token::kOpenBrace)) {
    objectLiteral();
    return finish(Node::kObject, from);
  }
  if (!accept(Token::kIdentifier)) fail("Expecting a symbol, vector or object literal");
  finish(Node::kSymbol, from);
}

// After its brace. The first name is the parent's, unless it is a key.
void BobParser::objectLiteral() {
  if (accept(Token::kCloseBrace)) return;
  const Start from = start();
  name(Node::kName);
  if (!accept(Token::kColon)) {
    if (!accept(Token::kCloseBrace)) pairs();
    return;
  }
  tree.nodes[stack.back()].kind = Node::kSelector;
  assignment();
  finish(Node::kPair, from);
  if (accept(Token::kComma)) return pairs();
  expectCloser(Token::kCloseBrace);
}

void BobParser::pairs() {
  do {
    const Start from = start();
    name(Node::kSelector);
    expect(Token::kColon);
    assignment();
    finish(Node::kPair, from);
  } while (accept(Token::kComma));
  expectCloser(Token::kCloseBrace);
}

// -- assignment

// Of the tokens from `from` to before `behind`.
void BobParser::reportPlace(const Start& from, size_t behind, const char* text) {
  const std::vector<BobSourceToken>& tokens = tree.tokens.all;
  const uint32_t begin = tokens[from.token].begin;
  report(begin, behind > from.token ? tokens[behind - 1].end - begin : 0, text);
}

void BobParser::needPlace(Place place, const Start& from) {
  if (place == Place::kValue) reportPlace(from, consumed, "Expecting an lvalue");
}

// Once the value has been read, as the compiler finds it.
void BobParser::storeInto(Place place, const Start& from, size_t behind) {
  if (place == Place::kConstant) reportPlace(from, behind, "Attempt to store into a constant");
}
