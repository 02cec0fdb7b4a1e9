// The parser that makes a BobTree: the compiler's recursive descent, with nodes in place of code.
//
// It never gives up: where something is missing, it says so once, puts kMissing there and goes on with the same token;
// where something is too much, it skips to where the list or the statement ends. A function that fails has therefore
// nothing to undo, and each leaves exactly one node on the stack.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "kit/language/bobtree.h"

class BobParser {
 public:
  // With `close` a define or function that begins a line ends all blocks that are open: a guess, for a
  // source that has lost a brace.
  BobParser(BobTree* t, bool close) : tree(*t), closeAtDefinitions(close) {}
  void run();
  bool endedInBlock = false;  // the source ended in a block

 private:
  using Token = BobTokenKind;
  using Node = BobNodeKind;

  static constexpr size_t kControlDepth = 20;
  static constexpr int kNesting = 600;  // of statements, expressions and literals in each other
  static constexpr int32_t kSmallMin = -0x40000000, kSmallMax = 0x3FFFFFFF;

  // Counts a level of nesting while it is in scope. When there are too many, it says so and passes over what is nested.
  class Nested {
   public:
    explicit Nested(BobParser* p) : ok(p->nesting < kNesting), parser(p) {
      ++parser->nesting;
      if (!ok) parser->refuseNesting();
    }
    ~Nested() { --parser->nesting; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;
    const bool ok;

   private:
    BobParser* parser;
  };

  // What can be done with an expression: kPlace can be assigned to, kConstant looks as if it could.
  enum class Place { kValue, kConstant, kPlace };
  // A node that has begun: the children that it will have, and its first token.
  struct Start {
    size_t mark;
    size_t token;
  };

  // bobparser.cpp: tokens, nodes, errors
  Token peek();
  void advance();
  bool accept(Token kind);
  bool startsLine() const;
  bool beginsColumn() const;
  Start start() const { return {stack.size(), at}; }
  void finish(Node kind, const Start& from);
  void missing() { finish(Node::kMissing, start()); }
  void leaf(Node kind);
  void report(uint32_t offset, uint32_t length, std::string text);
  void fail(std::string text);
  void failBefore(std::string text);
  void refuseNesting();
  void failFound(Token expected);
  bool expect(Token kind);
  void expectCloser(Token kind);
  void endStatement();
  void skipToStop(Token closer);
  bool stops(Token kind) const;
  bool closesAllBlocks() const;
  void name(Node kind);

  // parsestatements.cpp
  void statementInList();
  void statement();
  void block();
  void localDeclarations();
  void condition();
  void pushBreak();
  void loopBody();
  void ifStatement();
  void whileStatement();
  void doStatement();
  void forStatement();
  void returnStatement();
  void breakStatement();
  void continueStatement();
  void switchStatement();
  void caseLabel();
  std::string caseLiteral();
  void defaultLabel();
  void tryStatement();
  void throwStatement();
  void define();
  void function();
  void parameters();
  bool parameter();

  // parseexpressions.cpp
  void expression();
  Place assignment();  // an expression without commas
  Place conditional();
  Place logicalOr();
  Place logicalAnd();
  Place binary(size_t level);
  Place prefix();
  Place postfix();
  bool link(const Start& chain, Place* place);
  void member();
  void call();
  void selector();
  Place primary();
  void parenthesis();
  void functionLiteral();
  void superSend();
  void newObject();
  void literal();
  void list(Token closer);
  void objectLiteral();
  void pairs();
  void reportPlace(const Start& from, size_t behind, const char* text);
  void needPlace(Place place, const Start& from);
  void storeInto(Place place, const Start& from, size_t behind);

  BobTree& tree;
  bool closeAtDefinitions;
  size_t at = 0;                // the token that comes next, never a comment
  size_t consumed = 0;          // behind the token that was taken last
  size_t lexical = 0;           // the lexical errors that have been met
  std::vector<uint32_t> stack;  // of nodes that have no parent yet
  std::unordered_set<uint32_t> reported;
  int nesting = 0;
  int blocks = 0;  // open ones
  // Of the compiler's stacks: how many are open, and how many were when the function began.
  size_t breaks = 0, continues = 0, breakBase = 0, continueBase = 0, switchBase = 0;
  std::vector<std::unordered_set<std::string>> switches;  // the labels of each
  int functions = 0;                                      // that are open
  int ownThis = 0, ownNext = 0;                           // open blocks that declare a variable `this`, or `_next`
};
