#include "bob/compile/statementreader.h"

#include "bob/compile/compiler.h"

struct BobStatementReader::OuterInput {
  BobScanner scanner;
};

BobStatementReader::BobStatementReader(BobScope* scope, BobStream* source)
    : scope(scope), outer(new OuterInput{std::move(scope->interp->compiler->scanner)}) {
  BobCompiler& compiler = *scope->interp->compiler;
  compiler.scanner = {};
  compiler.scanner.attach(scope->interp, source);
}

BobStatementReader::~BobStatementReader() {
  scope->interp->sourceLine = outer->scanner.lineNumber;
  scope->interp->compiler->scanner = std::move(outer->scanner);
}

BobValue BobStatementReader::next() { return scope->interp->compiler->compileStatement(scope->object); }

int bobCurrentLine(const BobInterp* interp) { return interp->sourceLine; }
