// The compiler: one pass, no syntax tree. Code goes into one buffer as the parser recognises it.
//
// The unit is one top-level statement, which becomes a Method that the caller runs at once, so that a `define` has
// taken effect before the next statement is read. Nested functions share the two buffers with the code around them:
// each is compiled above it and closed off with a CompiledCode of its own.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "bob/interp.h"
#include "bob/opcodes.h"
#include "bob/scanner.h"

struct BobCompiler {
 public:
  explicit BobCompiler(BobInterp* interp);
  ~BobCompiler();

  void attach(BobStream* input) { scanner.attach(interp, input); }
  // The next statement as a Method of the scope, or 0 at the end of the input.
  BobValue compileStatement(BobValue scopeObject);

  BobScanner scanner;

 private:
  static constexpr int kCodeSize = 4096;
  static constexpr int kLiteralCount = 256;
  static constexpr size_t kControlDepth = 20;
  static constexpr int kNesting = 600;  // of statements, expressions and literals in each other

  // What an expression parser has recognised. kValue: the value is in val; otherwise a place, whose value takes a load.
  struct Place {
    enum Kind { kValue, kConstant, kVariable, kGlobal, kProperty, kElement } kind = kValue;
    int a = 0, b = 0;  // opcode; or depth and index; or literal
  };
  struct Scope {
    std::vector<std::string> names;
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

  // compiler.cpp: buffers, names, functions
  void reset();
  void emit(int byte);
  void emitOp(BobOpcode op);
  void emitOp(BobOpcode op, int operand);
  void emitOp(BobOpcode op, int first, int second);
  void emitWord(int word);
  int emitBranch(BobOpcode op, int chain);  // to a place unknown yet: the new chain
  void emitBranchTo(BobOpcode op, int target);
  void emitLiteral(BobOpcode op, int literal);
  void patch(int chain, int target);
  void patchHere(int chain) { patch(chain, here()); }
  int here() const { return codePointer - functionBase; }
  int byteCount(size_t count);
  uint32_t* literalSlots();
  int addLiteral(BobValue value);
  int addSymbol(std::string_view name);
  int addString(std::string_view text);
  BobValue makeCode();
  Scope& pushScope();
  void popScope();
  void addName(std::string_view name);
  bool findVariable(std::string_view name, Place* place) const;
  Place findName(std::string_view name);
  void load(Place& place);  // the rvalue step
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
  Place binary(int level);
  Place prefix();
  Place stepBefore(BobOpcode step);
  Place postfix();
  void stepAfter(Place& place, BobOpcode step, BobOpcode back);
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
  int blockLevel = 0;
  int nesting = 0;
  std::vector<Scope> scopes;  // the innermost last
  std::vector<Break> breaks;
  std::vector<Continue> continues;
  std::vector<Switch> switches;
  size_t breakBase = 0, continueBase = 0, switchBase = 0;  // where the current function's entries begin
  uint8_t codeBuffer[kCodeSize];
  int functionBase = 0, codePointer = 0;
  BobValue literals = kBobNil;  // a Vector, protected
  int literalBase = 0, literalPointer = 0;
  bool emitLineNumbers = false;  // nothing sets it: compiled code holds no LINE
};

// Counts a level of nesting while it stands; error 2 if there are too many.
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
