// Statements, functions and definitions.
#include <utility>

#include "kit/language/bobparser.h"

void BobParser::run() {
  const Start from = start();
  at = 0;
  while (tree.tokens.all[at].isComment()) ++at;
  while (peek() != Token::kEnd) statementInList();
  consumed = at;
  finish(Node::kSource, from);
}

// A token that no statement wants is passed over.
void BobParser::statementInList() {
  const size_t before = at;
  statement();
  if (at == before) advance();
}

void BobParser::statement() {
  const Start from = start();
  peek();
  const Nested nested(this);
  if (!nested.ok) return missing();
  switch (peek()) {
    case Token::kSemicolon: return leaf(Node::kEmpty);
    case Token::kOpenBrace: return block();
    case Token::kDefine: define(); return finish(Node::kDefine, from);
    case Token::kIf: ifStatement(); return finish(Node::kIf, from);
    case Token::kWhile: whileStatement(); return finish(Node::kWhile, from);
    case Token::kDo: doStatement(); return finish(Node::kDo, from);
    case Token::kFor: forStatement(); return finish(Node::kFor, from);
    case Token::kReturn: returnStatement(); return finish(Node::kReturn, from);
    case Token::kBreak: breakStatement(); return finish(Node::kBreak, from);
    case Token::kContinue: continueStatement(); return finish(Node::kContinue, from);
    case Token::kSwitch: switchStatement(); return finish(Node::kSwitch, from);
    case Token::kCase: caseLabel(); return finish(Node::kCase, from);
    case Token::kDefault: defaultLabel(); return finish(Node::kDefault, from);
    case Token::kTry: tryStatement(); return finish(Node::kTry, from);
    case Token::kThrow:
      advance();
      expression();
      endStatement();
      return finish(Node::kThrow, from);
    default:
      expression();
      endStatement();
      return finish(Node::kExpression, from);
  }
}

// With its opening brace, or kMissing without one.
void BobParser::block() {
  const Start from = start();
  if (!expect(Token::kOpenBrace)) return missing();
  ++blocks;
  const int outerThis = ownThis, outerNext = ownNext;
  while (peek() == Token::kLocal) localDeclarations();
  for (;;) {
    if (closesAllBlocks()) {
      failFound(Token::kCloseBrace);
      break;
    }
    if (accept(Token::kCloseBrace)) break;
    const bool atEnd = peek() == Token::kEnd;
    statementInList();
    if (!atEnd) continue;
    endedInBlock = true;
    break;
  }
  --blocks;
  ownThis = outerThis;
  ownNext = outerNext;
  finish(Node::kBlock, from);
}

void BobParser::localDeclarations() {
  const Start from = start();
  advance();
  do {
    const Start declaration = start();
    const std::string_view declared = tree.text(tree.tokens.all[at]);
    name(Node::kName);
    if (accept(Token::kAssign)) assignment();
    ownThis += declared == "this";
    ownNext += declared == "_next";
    finish(Node::kVariable, declaration);
  } while (accept(Token::kComma));
  endStatement();
  finish(Node::kLocals, from);
}

// Where the opening parenthesis is missing, the closing one isn't missed.
void BobParser::condition() {
  const bool opened = expect(Token::kOpenParenthesis);
  expression();
  if (opened) return expectCloser(Token::kCloseParenthesis);
  accept(Token::kCloseParenthesis);
}

void BobParser::ifStatement() {
  advance();
  condition();
  statement();
  if (accept(Token::kElse)) statement();
}

void BobParser::pushBreak() {
  if (++breaks > kControlDepth) failBefore("Too many nested loops");
}

void BobParser::loopBody() {
  pushBreak();
  if (++continues > kControlDepth) failBefore("Too many nested loops");
  statement();
  --breaks;
  --continues;
}

void BobParser::whileStatement() {
  advance();
  condition();
  loopBody();
}

void BobParser::doStatement() {
  advance();
  loopBody();
  if (!expect(Token::kWhile)) return missing();
  condition();
  endStatement();
}

void BobParser::forStatement() {
  advance();
  const bool opened = expect(Token::kOpenParenthesis);
  Start part = start();
  if (!accept(Token::kSemicolon)) {
    do assignment();
    while (accept(Token::kComma));
    expect(Token::kSemicolon);
  }
  finish(Node::kForPart, part);
  part = start();
  if (!accept(Token::kSemicolon)) {
    expression();
    expect(Token::kSemicolon);
  }
  finish(Node::kForPart, part);
  part = start();
  if (!accept(Token::kCloseParenthesis)) {
    expression();
    if (opened)
      expectCloser(Token::kCloseParenthesis);
    else
      accept(Token::kCloseParenthesis);
  }
  finish(Node::kForPart, part);
  loopBody();
}

void BobParser::returnStatement() {
  advance();
  if (accept(Token::kSemicolon)) return;
  expression();
  endStatement();
}

void BobParser::breakStatement() {
  if (breaks == breakBase) fail("Break outside of loop or switch");
  advance();
  endStatement();
}

void BobParser::continueStatement() {
  if (continues == continueBase) fail("Continue outside of loop");
  advance();
  endStatement();
}

void BobParser::switchStatement() {
  advance();
  condition();
  switches.emplace_back();
  if (switches.size() > kControlDepth) failBefore("Too many nested switch statements");
  pushBreak();
  statement();
  --breaks;
  switches.pop_back();
}

void BobParser::caseLabel() {
  if (switches.size() == switchBase) fail("Case outside of switch");
  advance();
  const BobSourceToken label = tree.tokens.all[at];
  const std::string identity = caseLiteral();
  expect(Token::kColon);
  if (switches.size() == switchBase || identity.empty()) return;
  if (!switches.back().insert(identity).second) report(label.begin, label.end - label.begin, "Duplicate case");
}

// The label, and what it is found again by: only small integers, symbols and nil are.
std::string BobParser::caseLiteral() {
  const int32_t value = tree.tokens.all[at].value;
  const Start from = start();
  switch (peek()) {
    case Token::kInteger:
      leaf(Node::kNumber);
      return value >= kSmallMin && value <= kSmallMax ? std::to_string(value) : std::string();
    case Token::kFloat: leaf(Node::kNumber); return {};
    case Token::kString: leaf(Node::kString); return {};
    case Token::kNil: leaf(Node::kNil); return "nil";
    case Token::kBackslash: {
      advance();
      std::string symbol;
      if (peek() == Token::kIdentifier) {
        symbol = "\\" + std::string(tree.text(tree.tokens.all[at]));
        advance();
      } else {
        fail("Expecting a literal symbol");
      }
      finish(Node::kSymbol, from);
      return symbol;
    }
    default:
      fail("Expecting a literal value");
      missing();
      return {};
  }
}

void BobParser::defaultLabel() {
  if (switches.size() == switchBase) fail("Default outside of switch");
  advance();
  expect(Token::kColon);
}

void BobParser::tryStatement() {
  advance();
  block();
  const Start from = start();
  if (accept(Token::kCatch)) {
    const bool opened = expect(Token::kOpenParenthesis);
    name(Node::kName);
    if (opened)
      expectCloser(Token::kCloseParenthesis);
    else
      accept(Token::kCloseParenthesis);
    block();
    finish(Node::kCatch, from);
  }
  const Start last = start();
  if (accept(Token::kFinally)) {
    block();
    finish(Node::kFinally, last);
  }
}

void BobParser::define() {
  advance();
  if (peek() == Token::kIdentifier) {
    leaf(Node::kName);
    while (accept(Token::kDot)) name(Node::kSelector);
  } else {
    fail("Expecting a function or a method definition");
    missing();
  }
  function();
}

// Parameters and body.
void BobParser::function() {
  const Nested nested(this);
  if (!nested.ok) return missing(), missing();
  const size_t outerBreaks = std::exchange(breakBase, breaks), outerContinues = std::exchange(continueBase, continues),
               outerSwitches = std::exchange(switchBase, switches.size());
  ++functions;
  parameters();
  block();
  --functions;
  breakBase = outerBreaks;
  continueBase = outerContinues;
  switchBase = outerSwitches;
}

// `(..)` is refused as the compiler refuses it.
void BobParser::parameters() {
  const Start from = start();
  if (!expect(Token::kOpenParenthesis)) return missing();
  if (!accept(Token::kCloseParenthesis)) {
    if (peek() == Token::kDotDot) {
      failFound(Token::kCloseParenthesis);
    } else {
      while (parameter() && accept(Token::kComma)) {
      }
    }
    expectCloser(Token::kCloseParenthesis);
  }
  finish(Node::kParameters, from);
}

// False for one that takes what is left over, which is the last.
bool BobParser::parameter() {
  const Start from = start();
  name(Node::kName);
  bool rest = false;
  if (accept(Token::kAssign))
    assignment();
  else
    rest = accept(Token::kDotDot);
  finish(Node::kParameter, from);
  return !rest;
}
