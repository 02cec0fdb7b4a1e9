// The compiler: recursive descent in one pass, no syntax tree. Code goes to the emitter as the parser recognises it.
//
// The unit is one top-level statement, which becomes a Method that the caller runs at once, so that a `define` has
// taken effect before the next statement is read. Expressions leave their value in the machine's `val`; what can be
// assigned to is parsed to a Place first, since `a.b` is loaded or stored depending on what comes after it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bob/compile/emitter.h"
#include "bob/compile/names.h"
#include "bob/compile/scanner.h"
#include "bob/compile/statementreader.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"

struct BobCompiler {
 public:
  explicit BobCompiler(BobInterp* interp);
  // The next statement as a Method of the scope, or 0 at the end of the input.
  BobValue compileStatement(BobValue scopeObject);

  BobScanner scanner;
  BobCodeNames codeNames;
  std::string sourceName;  // of the file that is read; empty for a text
  BobCodeListener listener;

 private:
  static constexpr size_t kControlDepth = 20;
  static constexpr int kNesting = 600;  // of statements, expressions and literals in each other

  // What an expression parser has recognised. kValue: the value is in val; otherwise a place, whose value takes a load.
  struct Place {
    enum Kind { kValue, kConstant, kVariable, kGlobal, kProperty, kElement } kind = kValue;
    int a = 0, b = 0;   // opcode; or depth and index; or literal
    BobSourcePlace at;  // of the token that names it
  };
  struct Break {
    int blockLevel;
    int chain;
  };
  struct Continue {
    int blockLevel;
    int address;
  };
  struct Case {
    int literal, address;
  };
  struct Switch {
    std::vector<Case> cases;  // by ascending literal
    int defaultAddress = 0;   // 0: none
  };
  class Nested;

  // compiler.cpp: names, places and tokens
  void reset();
  std::optional<Place> findVariable(std::string_view name) const;
  Place findName(std::string_view name);
  void load(Place& place);  // its value into val, which it then is
  void store(const Place& place);
  void prepare(const Place& place);
  void duplicate(const Place& place);
  void needPlace(const Place& place);
  [[noreturn]] void fail(std::string text) { bobSyntaxError(interp, std::move(text)); }
  void expect(int token);
  void expectFound(int token, int found);
  void identifier();
  bool accept(int token);

  // functions.cpp
  void nameCode(const BobSourcePlace& begin);
  void beginNotes();
  void endNotes(BobValue code);
  void function(const char* name);
  void parameters(int* required, int* optional, int opcodeAt);
  void define();
  void defineOnPath(const std::string& name);

  // statements.cpp
  void statement();
  void statementOf(int token);
  void block();
  bool localDeclarations();
  void declare(int* count);
  void parenthesised();
  void ifStatement();
  void whileStatement();
  void doStatement();
  void forStatement();
  void returnStatement();
  void breakStatement();
  void continueStatement();
  void switchStatement();
  void caseLabel();
  void defaultLabel();
  void tryStatement();
  void throwStatement();
  void loopBody(int chain, int address, int* endChain);
  void pushBreak(int chain);

  // expressions.cpp
  void expression();       // the comma level, its value in val
  void assignmentValue();  // the assignment level, its value in val
  Place comma();
  Place assignment();
  Place conditional();
  Place logicalOr();
  Place logicalAnd();
  Place binary(int least);
  Place prefix();
  Place stepBefore(BobOpcode step);
  void stepInPlace(const Place& place, BobOpcode step);
  Place postfix();
  void stepAfter(Place& place, BobOpcode step, BobOpcode back);
  void call(BobOpcode opcode, const BobSourcePlace& at);
  void send();
  int arguments();
  void selector();

  // primaries.cpp
  Place primary();
  void functionLiteral();
  void superSend();
  void newObject();
  void literal();
  void vectorLiteral();
  void objectLiteral();
  void pairs();
  void pair(const std::string& key);

  BobInterp* interp;
  BobNames names;
  BobEmitter emit;
  std::vector<BobCodeNotes> notes;  // of the functions that are being compiled; none when nobody listens
  int blockLevel = 0;               // block frames open in the current function
  int nesting = 0;
  std::vector<Break> breaks;
  std::vector<Continue> continues;
  std::vector<Switch> switches;
  size_t breakBase = 0, continueBase = 0, switchBase = 0;  // where the current function's entries begin
};

// Counts a level of nesting while it is in scope; error 2 if there are too many.
class BobCompiler::Nested {
 public:
  explicit Nested(BobCompiler* compiler) : compiler(compiler) {
    if (compiler->nesting == kNesting) bobRaise(compiler->interp, kBobStackOverflow);
    ++compiler->nesting;
  }
  ~Nested() { --compiler->nesting; }

 private:
  BobCompiler* compiler;
};
