#include "bob/compile/statementreader.h"

#include <utility>

#include "bob/compile/compiler.h"

struct BobStatementReader::OuterInput {
  BobScanner scanner;
  BobCodeNames codeNames;
};

BobStatementReader::BobStatementReader(BobScope* scope, BobStream* source, BobCodeNames names)
    : scope(scope),
      outer(new OuterInput{std::move(scope->interp->compiler->scanner),
                           std::exchange(scope->interp->compiler->codeNames, std::move(names))}) {
  BobCompiler& compiler = *scope->interp->compiler;
  compiler.scanner = {};
  compiler.scanner.attach(scope->interp, source);
}

BobStatementReader::~BobStatementReader() {
  scope->interp->sourceLine = outer->scanner.lineNumber;
  scope->interp->compiler->scanner = std::move(outer->scanner);
  scope->interp->compiler->codeNames = std::move(outer->codeNames);
}

BobValue BobStatementReader::next() { return scope->interp->compiler->compileStatement(scope->object); }

int bobCurrentLine(const BobInterp* interp) { return interp->sourceLine; }
